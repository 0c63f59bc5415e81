import QtQuick
import Vorn

/// Around its parent while that has the keyboard.
Rectangle {
    property int distance: Theme.sizes.focusWidth

    anchors.fill: parent
    anchors.margins: -distance
    visible: parent.activeFocus
    color: "transparent"
    border.color: Theme.colors.accent
    border.width: Theme.sizes.focusWidth
    radius: Theme.sizes.controlRadius + Math.max(0, distance)
}
