import QtQuick
import Vorn.Controls

/// What its parent does or says in full, shown above or below it a moment after `wanted`, within the window and over
/// everything else in it.
Item {
    id: hint

    property bool wanted: false
    /// Rather than above; where there is no room it goes to the other side.
    property bool below: false
    property alias text: label.text
    readonly property alias bubble: bubble

    onWantedChanged: {
        bubble.isShown = false;
        delay.running = wanted && text !== "";
    }

    Timer {
        id: delay

        interval: 600
        onTriggered: bubble.show()
    }

    Rectangle {
        id: bubble

        property bool isShown: false

        function show() {
            const gap = Theme.sizes.near;
            const at = hint.parent.mapToItem(parent, 0, 0);
            const above = at.y - height - gap;
            const under = at.y + hint.parent.height + gap;
            const isUnder = hint.below ? under + height + gap <= parent.height : above < gap;
            x = Math.max(gap, Math.min(at.x + (hint.parent.width - width) / 2, parent.width - width - gap));
            y = isUnder ? under : above;
            isShown = true;
        }

        parent: hint.Window.contentItem
        visible: isShown && hint.visible
        opacity: visible ? 1 : 0
        z: 20
        width: Math.min(label.implicitWidth, Theme.sizes.popoverWidth - 2 * Theme.sizes.between) + 2 * Theme.sizes.gap
        height: label.height + Theme.sizes.gap
        radius: Theme.sizes.controlRadius
        color: Theme.colors.window
        border.color: Theme.colors.fieldLine
        border.width: Theme.sizes.hair
        LayoutMirroring.enabled: Theme.mirrored
        LayoutMirroring.childrenInherit: true

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.openDuration
            }
        }

        Label {
            id: label

            anchors.centerIn: parent
            width: bubble.width - 2 * Theme.sizes.gap
            font.pixelSize: Theme.sizes.small
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
}
