import QtQuick
import Vorn.Answer
import Vorn.Controls

/// What will happen to a window, when, and how fast; each on its own line, so that no font or language breaks it. What
/// is not known yet keeps its line, so that nothing moves when it is.
Column {
    id: details

    required property windowCard card

    topPadding: Theme.sizes.gap - Theme.sizes.tight
    spacing: Theme.sizes.tight

    VerdictLabel {
        width: parent.width
        wrapMode: Text.Wrap
        status: details.card.status
        text: details.card.verdict
    }

    DetailLabel {
        text: details.card.reset
    }

    DetailLabel {
        text: details.card.pace
    }

    Item {
        width: parent.width
        height: planned.height + Theme.sizes.near
        visible: details.card.plannedReset !== ""

        Icon {
            id: flag

            anchors.left: parent.left
            y: planned.y + Theme.sizes.hair
            width: Theme.sizes.small + Theme.sizes.tight
            height: width
            symbol: Icon.Flag
            color: Theme.colors.accent
        }

        DetailLabel {
            id: planned

            anchors.left: flag.right
            anchors.leftMargin: Theme.sizes.gap
            y: Theme.sizes.near
            width: parent.width - flag.width - Theme.sizes.gap
            text: details.card.plannedReset
        }
    }
}
