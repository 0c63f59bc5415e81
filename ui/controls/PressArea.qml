import QtQuick
import Vorn.Controls

/// Makes its parent answer to the mouse, and shows that it does.
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
