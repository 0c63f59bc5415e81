import QtQuick
import Vorn.Controls

Pressable {
    id: button

    required property string text
    property bool primary: false

    opacity: enabled ? 1 : 0.5
    implicitWidth: label.implicitWidth + 2 * Theme.sizes.between
    implicitHeight: Theme.sizes.control
    Accessible.name: text

    FieldFrame {
        color: button.primary ? Theme.colors.accent : "transparent"
        border.color: button.primary ? Theme.colors.accent : Theme.colors.fieldLine
    }

    PressArea {
        onTriggered: button.triggered()
    }

    Label {
        id: label

        anchors.centerIn: parent
        medium: true
        text: button.text
        color: button.primary ? Theme.colors.textOnAccent : Theme.colors.text
        Accessible.ignored: true
    }

    FocusRing {}
}
