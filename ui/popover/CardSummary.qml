import QtQuick
import Vorn.Answer
import Vorn.Controls

/// The verdict and the reset of a compact card, on one line. Where only one fits, it is the verdict.
Item {
    id: summary

    required property windowCard card

    implicitHeight: verdict.y + verdict.implicitHeight

    VerdictLabel {
        id: verdict

        anchors.left: parent.left
        y: Theme.sizes.tight
        width: Math.min(implicitWidth, parent.width)
        font.pixelSize: Theme.sizes.small
        medium: false
        elide: Text.ElideRight
        status: summary.card.status
        text: summary.card.verdict
    }

    Label {
        anchors.right: parent.right
        visible: verdict.implicitWidth + Theme.sizes.gap + implicitWidth <= parent.width
        anchors.baseline: verdict.baseline
        font.pixelSize: Theme.sizes.small
        color: Theme.colors.secondText
        text: summary.card.shortReset
        Accessible.ignored: true
    }
}
