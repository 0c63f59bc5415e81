import QtQuick
import Vorn.Controls

/// A button that is only a drawing, with its name in a hint.
Pressable {
    id: button

    required property string name
    property alias symbol: icon.symbol
    property alias iconRotation: icon.rotation

    implicitWidth: Theme.sizes.iconButton
    implicitHeight: Theme.sizes.iconButton
    opacity: enabled ? 1 : 0.35
    Accessible.name: name

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
