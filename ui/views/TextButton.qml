import QtQuick
import Vorn

Item {
    id: button

    required property string text
    property bool primary: false
    signal triggered

    implicitWidth: label.implicitWidth + 2 * Theme.sizes.between
    implicitHeight: Theme.sizes.control
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: triggered()
    Keys.onReturnPressed: triggered()
    Keys.onEnterPressed: triggered()
    Keys.onSpacePressed: triggered()

    Rectangle {
        anchors.fill: parent
        radius: Theme.sizes.controlRadius
        color: button.primary ? Theme.colors.accent : "transparent"
        border.color: button.primary ? Theme.colors.accent : Theme.colors.fieldLine
        border.width: Theme.sizes.hair
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
