import QtQuick
import Vorn.Answer
import Vorn.Controls
import Vorn.Popover

/// One limit: how much, how far, what will happen, when, how fast. Compact, it is three short lines that open on a
/// click or Return.
Pressable {
    id: block

    required property windowCard card
    /// Whether it starts compact; it then opens and closes.
    required property bool foldable
    property bool isOpen: false
    readonly property bool compact: foldable && !isOpen

    implicitHeight: content.height + 2 * (compact ? Theme.sizes.gap + Theme.sizes.tight : Theme.sizes.inset - Theme.sizes.tight)
    Accessible.role: foldable ? Accessible.Button : Accessible.ListItem
    Accessible.name: card.spoken
    onTriggered: {
        if (foldable) {
            isOpen = !isOpen;
        }
    }

    PressArea {
        enabled: block.foldable
        radius: 0
        onTriggered: block.triggered()
    }

    Column {
        id: content

        anchors {
            left: parent.left
            right: parent.right
            leftMargin: Theme.sizes.inset
            rightMargin: Theme.sizes.inset
            verticalCenter: parent.verticalCenter
        }

        CardHeadline {
            id: headline

            width: parent.width
            card: block.card
            compact: block.compact

            Hint {
                text: headline.isShortened ? block.card.title : ""
                below: true
                wanted: hover.hovered || block.activeFocus
            }
        }

        UsageBar {
            width: parent.width
            height: Theme.sizes.bar + 2 * Theme.sizes.near
            barHeight: Theme.sizes.bar
            mirrored: block.LayoutMirroring.enabled
            color: Theme.colors.status(block.card.status)
            paleColor: Theme.colors.pale(block.card.status)
            trackColor: Theme.colors.track
            tickColor: Theme.colors.text
            used: block.card.used
            projected: block.card.projected
            evenPace: block.card.evenPace
            segments: block.card.segments

            Behavior on used {
                NumberAnimation {
                    duration: Theme.barDuration
                    easing.type: Easing.OutCubic
                }
            }
            Behavior on projected {
                NumberAnimation {
                    duration: Theme.barDuration
                    easing.type: Easing.OutCubic
                }
            }
        }

        CardSummary {
            width: parent.width
            visible: block.compact
            card: block.card
        }

        CardDetails {
            width: parent.width
            visible: !block.compact
            card: block.card
        }
    }

    HoverHandler {
        id: hover
    }

    FocusRing {
        distance: -Theme.sizes.near
    }
}
