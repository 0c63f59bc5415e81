import QtQuick
import Vorn.Controls

/// The mark alone; what it stands in answers to clicks.
Rectangle {
    required property bool checked

    implicitWidth: Theme.sizes.icon
    implicitHeight: Theme.sizes.icon
    radius: width / 2
    color: "transparent"
    border.color: checked ? Theme.colors.accent : Theme.colors.fieldLine
    border.width: checked ? Math.round(width * 0.3) : Theme.sizes.hair
}
