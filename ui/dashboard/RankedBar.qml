import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// A name, its part of the whole as a bar, and in percent.
Item {
    id: row

    required property rankedShare share
    required property real numberWidth
    /// What a name of usual length takes; the bar gets the rest.
    readonly property real nameWidth: 200 * Theme.sizes.scale

    implicitHeight: name.implicitHeight + Theme.sizes.tight
    Accessible.role: Accessible.ListItem
    Accessible.name: share.name + " " + share.text

    Label {
        id: name

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        width: row.share.text === "" ? parent.width : parent.width - bar.width - row.numberWidth - 2 * Theme.sizes.gap
        elide: Text.ElideMiddle
        color: row.share.text === "" ? Theme.colors.secondText : Theme.colors.text
        text: row.share.name
        Accessible.ignored: true

        HoverHandler {
            id: hover
        }

        Hint {
            text: name.truncated ? row.share.name : ""
            wanted: hover.hovered
        }
    }

    Rectangle {
        id: bar

        anchors.right: parent.right
        anchors.rightMargin: row.numberWidth + Theme.sizes.gap
        anchors.verticalCenter: parent.verticalCenter
        visible: row.share.text !== ""
        width: Math.round(Math.max(parent.width * 0.28, parent.width - row.nameWidth - row.numberWidth - 2 * Theme.sizes.gap))
        height: Theme.sizes.bar
        radius: Theme.sizes.near / 2
        color: Theme.colors.track

        Rectangle {
            anchors.left: parent.left
            width: Math.max(Theme.sizes.near / 2, parent.width * row.share.share)
            height: parent.height
            visible: row.share.share > 0
            radius: parent.radius
            color: row.share.isRest ? Theme.colors.thirdText : Theme.colors.accent
        }
    }

    Label {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: row.numberWidth
        horizontalAlignment: Text.AlignRight
        color: Theme.colors.secondText
        text: row.share.text
        Accessible.ignored: true
    }
}
