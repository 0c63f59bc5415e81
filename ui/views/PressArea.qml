import QtQuick
import Vorn

/// Makes its parent answer to the mouse, Return and Space alike, and shows where the mouse and the keyboard are.
MouseArea {
    id: area

    property real radius: Theme.sizes.controlRadius
    signal triggered

    anchors.fill: parent
    hoverEnabled: true
    onClicked: triggered()

    Rectangle {
        anchors.fill: parent
        visible: area.enabled && area.containsMouse
        radius: area.radius
        color: area.pressed ? Theme.colors.pressed : Theme.colors.hover
    }
}
