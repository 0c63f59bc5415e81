import QtQuick
import Vorn.Controls

/// The mark alone; what it stands in answers to clicks.
Rectangle {
    id: box

    required property bool checked

    implicitWidth: Theme.sizes.icon
    implicitHeight: Theme.sizes.icon
    radius: Theme.sizes.near
    color: checked ? Theme.colors.accent : "transparent"
    border.color: checked ? Theme.colors.accent : Theme.colors.fieldLine
    border.width: Theme.sizes.hair

    Icon {
        anchors.fill: parent
        anchors.margins: Theme.sizes.hair
        visible: box.checked
        symbol: Icon.Tick
        color: Theme.colors.textOnAccent
    }
}
