import QtQuick
import Vorn.Controls

/// The border that tells where a control is.
Rectangle {
    anchors.fill: parent
    radius: Theme.sizes.controlRadius
    color: "transparent"
    border.color: Theme.colors.fieldLine
    border.width: Theme.sizes.hair
}
