import QtQuick
import Vorn

/// What its parent does or says in full, shown above or below it a moment after `wanted`, within the window.
Rectangle {
    id: hint

    property bool wanted: false
    property bool below: false
    property alias text: label.text

    visible: false
    opacity: visible ? 1 : 0
    z: 10
    width: Math.min(label.implicitWidth, Theme.sizes.popoverWidth - 2 * Theme.sizes.between) + 2 * Theme.sizes.gap
    height: label.height + Theme.sizes.gap
    y: below ? parent.height + Theme.sizes.near : -height - Theme.sizes.near
    radius: Theme.sizes.controlRadius
    color: Theme.colors.window
    border.color: Theme.colors.fieldLine
    border.width: Theme.sizes.hair
    onWantedChanged: {
        if (wanted && text !== "") {
            delay.start();
        } else {
            delay.stop();
            visible = false;
        }
    }

    function show() {
        const left = parent.mapToItem(null, 0, 0).x;
        const rightmost = Window.width - width - Theme.sizes.near;
        x = Math.max(Theme.sizes.near, Math.min(left + (parent.width - width) / 2, rightmost)) - left;
        visible = true;
    }

    Behavior on opacity {
        NumberAnimation {
            duration: Theme.openDuration
        }
    }

    Label {
        id: label

        anchors.centerIn: parent
        width: hint.width - 2 * Theme.sizes.gap
        font.pixelSize: Theme.sizes.small
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    Timer {
        id: delay

        interval: 600
        onTriggered: hint.show()
    }
}
