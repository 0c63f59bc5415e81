import QtQuick
import Vorn.Controls

/// A status by colour, shape and word; its baseline is the word's.
Item {
    id: tag

    required property int status
    required property string text
    property bool hasWord: true

    implicitWidth: mark.width + (hasWord ? word.implicitWidth + Theme.sizes.near : 0)
    implicitHeight: word.implicitHeight
    baselineOffset: word.baselineOffset

    StatusMark {
        id: mark

        anchors.left: parent.left
        y: Math.round(word.baselineOffset - (height + wordMetrics.tightBoundingRect.height) / 2)
        width: Theme.sizes.mark
        height: Theme.sizes.mark
        status: tag.status
        color: word.color
    }

    Label {
        id: word

        anchors.left: mark.right
        anchors.leftMargin: Theme.sizes.near
        visible: tag.hasWord
        medium: true
        text: tag.text
        font.pixelSize: Theme.sizes.caption
        color: Theme.colors.status(tag.status)
        Accessible.ignored: true
    }

    TextMetrics {
        id: wordMetrics

        font: word.font
        text: "H"
    }
}
