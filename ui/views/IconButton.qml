import QtQuick
import Vorn

/// A button that is only a drawing, with its name in a hint.
Item {
    id: button

    required property string name
    property alias symbol: icon.symbol
    property alias iconRotation: icon.rotation
    signal triggered

    implicitWidth: Theme.sizes.iconButton
    implicitHeight: Theme.sizes.iconButton
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.onPressAction: triggered()
    Keys.onReturnPressed: triggered()
    Keys.onEnterPressed: triggered()
    Keys.onSpacePressed: triggered()

    PressArea {
        id: area

        onTriggered: button.triggered()
    }

    Icon {
        id: icon

        anchors.centerIn: parent
        width: Theme.sizes.icon
        height: Theme.sizes.icon
        color: area.containsMouse || button.activeFocus ? Theme.colors.text : Theme.colors.secondText
    }

    FocusRing {
        distance: 0
    }

    Hint {
        text: button.name
        wanted: area.containsMouse || button.activeFocus
    }
}
