import QtQuick
import Vorn.Controls

/// Shows how far a list is scrolled and that there is more.
Rectangle {
    required property Flickable flickable

    parent: flickable
    anchors.right: parent.right
    anchors.rightMargin: Theme.sizes.tight
    visible: flickable.contentHeight > flickable.height
    y: flickable.visibleArea.yPosition * flickable.height
    width: Theme.sizes.near
    height: flickable.visibleArea.heightRatio * flickable.height
    radius: width / 2
    color: Theme.colors.fieldLine
}
