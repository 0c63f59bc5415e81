import QtQuick
import Vorn.Controls

/// Around its parent while that has the keyboard. On a filled control it would not be seen without room between.
Rectangle {
    /// From the parent's edge to the ring's outer one.
    property int distance: 2 * Theme.sizes.focusWidth

    anchors.fill: parent
    anchors.margins: -distance
    visible: parent.activeFocus
    color: "transparent"
    border.color: Theme.colors.accent
    border.width: Theme.sizes.focusWidth
    radius: Theme.sizes.controlRadius + Math.max(0, distance)
}
