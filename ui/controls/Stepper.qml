import QtQuick
import Vorn.Controls

/// A small count that goes up and down by one, with the arrow keys too.
Item {
    id: stepper

    required property string name
    required property int value
    property int maximum: 99
    signal picked(int value)

    implicitWidth: 2 * Theme.sizes.control + widest.advanceWidth + Theme.sizes.gap
    implicitHeight: Theme.sizes.control
    activeFocusOnTab: true
    Accessible.role: Accessible.SpinBox
    Accessible.name: name + ", " + value
    Accessible.focusable: true
    Accessible.onIncreaseAction: step(1)
    Accessible.onDecreaseAction: step(-1)
    Keys.onUpPressed: step(1)
    Keys.onDownPressed: step(-1)
    Keys.onPressed: event => {
        const by = event.key === Qt.Key_Plus ? 1 : event.key === Qt.Key_Minus ? -1 : 0;
        event.accepted = by !== 0;
        step(by);
    }

    function step(by: int) {
        const next = Math.max(0, Math.min(value + by, maximum));
        if (next !== value) {
            picked(next);
        }
    }

    FieldFrame {}

    Item {
        id: less

        anchors.left: parent.left
        width: Theme.sizes.control
        height: parent.height
        enabled: stepper.value > 0
        opacity: enabled ? 1 : 0.4

        PressArea {
            onTriggered: stepper.step(-1)
        }

        Icon {
            anchors.centerIn: parent
            width: Theme.sizes.small
            height: width
            symbol: Icon.Minus
            color: Theme.colors.secondText
        }
    }

    Label {
        anchors.centerIn: parent
        medium: true
        text: stepper.value
        Accessible.ignored: true
    }

    Item {
        anchors.right: parent.right
        width: Theme.sizes.control
        height: parent.height
        enabled: stepper.value < stepper.maximum
        opacity: enabled ? 1 : 0.4

        PressArea {
            onTriggered: stepper.step(1)
        }

        Icon {
            anchors.centerIn: parent
            width: Theme.sizes.small
            height: width
            symbol: Icon.Plus
            color: Theme.colors.secondText
        }
    }

    TextMetrics {
        id: widest

        font.pixelSize: Theme.sizes.body
        text: "00"
    }

    FocusRing {}
}
