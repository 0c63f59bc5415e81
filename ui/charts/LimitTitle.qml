import QtQuick
import Vorn.Answer
import Vorn.Controls

/// Title, status, verdict and percentage of a limit. The verdict is never shortened: the status's word gives way first,
/// then the verdict takes a line of its own, and a long title what is left.
Item {
    id: row

    required property windowCard card

    readonly property real room: width - amount.implicitWidth - Theme.sizes.inset
    readonly property real bare: name.implicitWidth + verdict.implicitWidth + Theme.sizes.mark + 3 * Theme.sizes.gap
    readonly property bool hasRoomForWord: bare + tag.wordWidth <= room
    readonly property bool isOneLine: bare <= room

    implicitHeight: amount.implicitHeight + (isOneLine ? 0 : verdict.height) + Theme.sizes.near

    Label {
        id: name

        anchors.left: parent.left
        anchors.baseline: amount.baseline
        width: Math.min(implicitWidth, row.isOneLine ? implicitWidth : row.room - tag.implicitWidth - Theme.sizes.gap)
        semibold: true
        font.pixelSize: Theme.sizes.title
        elide: Text.ElideMiddle
        text: row.card.title
        Accessible.ignored: true

        HoverHandler {
            id: hover
        }

        Hint {
            below: true
            text: name.truncated ? name.text : ""
            wanted: hover.hovered
        }
    }

    StatusTag {
        id: tag

        readonly property real wordWidth: word.width + Theme.sizes.near

        anchors.left: name.right
        anchors.leftMargin: Theme.sizes.gap + Theme.sizes.tight
        anchors.baseline: amount.baseline
        visible: text !== ""
        status: row.card.status
        text: row.card.statusText
        hasWord: row.hasRoomForWord || !row.isOneLine

        TextMetrics {
            id: word

            font.pixelSize: Theme.sizes.small
            font.weight: Font.DemiBold
            text: row.card.statusText
        }
    }

    VerdictLabel {
        id: verdict

        anchors.left: row.isOneLine ? tag.right : parent.left
        anchors.leftMargin: row.isOneLine ? Theme.sizes.gap + Theme.sizes.tight : 0
        y: row.isOneLine ? amount.baselineOffset - baselineOffset : amount.implicitHeight
        width: row.isOneLine ? implicitWidth : parent.width
        wrapMode: row.isOneLine ? Text.NoWrap : Text.Wrap
        medium: false
        status: row.card.status
        text: row.card.verdict
    }

    Label {
        id: amount

        anchors.right: parent.right
        semibold: true
        font.pixelSize: Theme.sizes.percent
        text: row.card.usedText
        Accessible.ignored: true
    }
}
