import QtQuick
import Vorn.Answer
import Vorn.Controls

/// Title, status and percentage of a window on one baseline. A long title gives way, never the status or the number.
Item {
    id: row

    required property windowCard card
    property bool compact: false
    readonly property alias isShortened: name.truncated

    implicitHeight: compact ? name.implicitHeight : percent.implicitHeight

    Label {
        id: name

        readonly property real room: row.width - tag.implicitWidth - amount.width - 2 * Theme.sizes.gap

        anchors.left: parent.left
        anchors.baseline: amount.baseline
        width: Math.min(implicitWidth, room)
        semibold: true
        font.pixelSize: Theme.sizes.title
        elide: Text.ElideMiddle
        text: row.card.title
        Accessible.ignored: true
    }

    StatusTag {
        id: tag

        anchors.left: name.right
        anchors.leftMargin: Theme.sizes.gap
        anchors.baseline: amount.baseline
        status: row.card.status
        text: row.card.statusText
    }

    // A number and its unit read from left to right wherever they stand.
    Item {
        id: amount

        LayoutMirroring.enabled: false
        LayoutMirroring.childrenInherit: true
        x: row.LayoutMirroring.enabled ? 0 : parent.width - width
        width: percent.implicitWidth + (row.compact ? 0 : unit.implicitWidth)
        height: percent.implicitHeight
        baselineOffset: percent.baselineOffset

        Label {
            id: percent

            semibold: true
            font.pixelSize: row.compact ? Theme.sizes.title : Theme.sizes.percent
            text: row.card.usedText
            Accessible.ignored: true
        }

        Label {
            id: unit

            anchors.left: percent.right
            anchors.baseline: percent.baseline
            visible: !row.compact
            leftPadding: Theme.sizes.near
            font.pixelSize: Theme.sizes.small
            color: Theme.colors.secondText
            text: qsTr("used")
            Accessible.ignored: true
        }
    }
}
