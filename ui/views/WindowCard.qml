import QtQuick
import Vorn

/// One limit: how much, how far, what will happen, when, how fast. Compact, it is three short lines that open on a
/// click or Return.
Pressable {
    id: card

    required property string title
    required property int status
    required property string statusText
    required property string usedText
    required property real used
    required property real projected
    required property real evenPace
    required property int segments
    required property string verdict
    required property string reset
    required property string shortReset
    required property string pace
    required property string planned
    required property string spoken
    /// Whether it starts compact; it then opens and closes.
    required property bool foldable
    property bool isOpen: false
    readonly property bool compact: foldable && !isOpen

    implicitHeight: content.height + 2 * (compact ? Theme.sizes.gap + Theme.sizes.tight : Theme.sizes.inset - Theme.sizes.tight)
    Accessible.role: foldable ? Accessible.Button : Accessible.ListItem
    Accessible.name: spoken
    onTriggered: {
        if (foldable) {
            isOpen = !isOpen;
        }
    }

    PressArea {
        enabled: card.foldable
        radius: 0
        onTriggered: card.triggered()
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
            title: card.title
            status: card.status
            statusText: card.statusText
            usedText: card.usedText
            compact: card.compact
        }

        UsageBar {
            width: parent.width
            height: Theme.sizes.bar + 2 * Theme.sizes.near
            barHeight: Theme.sizes.bar
            mirrored: card.LayoutMirroring.enabled
            color: Theme.colors.status(card.status)
            paleColor: Theme.colors.pale(card.status)
            trackColor: Theme.colors.track
            tickColor: Theme.colors.text
            used: card.used
            projected: card.projected
            evenPace: card.evenPace
            segments: card.segments

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
            visible: card.compact
            status: card.status
            verdict: card.verdict
            shortReset: card.shortReset
        }

        CardDetails {
            width: parent.width
            visible: !card.compact
            status: card.status
            verdict: card.verdict
            reset: card.reset
            pace: card.pace
            planned: card.planned
        }
    }

    HoverHandler {
        id: hover
    }

    Hint {
        text: headline.isShortened ? card.title : ""
        below: true
        y: headline.y + content.y + headline.height
        wanted: hover.hovered || card.activeFocus
    }

    FocusRing {
        distance: -Theme.sizes.near
    }
}
