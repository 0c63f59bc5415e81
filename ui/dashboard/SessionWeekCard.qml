import QtQuick
import Vorn.Answer
import Vorn.Controls
import Vorn.Dashboard

/// What a session costs of the week, and how many still fit.
Card {
    id: card

    required property sessionWeekContent content
    required property var otherLimits

    readonly property bool isKnown: content.waiting === ""

    implicitHeight: column.height + 2 * Theme.sizes.inset
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Session and week")

    Column {
        id: column

        x: Theme.sizes.inset
        y: Theme.sizes.inset
        width: parent.width - 2 * Theme.sizes.inset
        spacing: Theme.sizes.gap

        Label {
            width: parent.width
            semibold: true
            font.pixelSize: Theme.sizes.title
            text: qsTr("Session and week")
        }

        SessionPips {
            width: parent.width
            height: implicitHeight
            visible: card.isKnown && sessions > 0
            pipHeight: Math.round(14 * Theme.sizes.scale)
            mirrored: card.LayoutMirroring.enabled
            color: Theme.colors.accent
            paleColor: Theme.colors.track
            sessions: card.content.sessions
            used: card.content.usedSessions
        }

        ValueRow {
            width: parent.width
            visible: card.isKnown
            label: qsTr("A full 5-hour session")
            value: card.content.cost
        }

        ValueRow {
            width: parent.width
            visible: card.isKnown
            label: qsTr("sessions per week")
            value: card.content.perWeek
        }

        ValueRow {
            width: parent.width
            visible: card.isKnown
            label: qsTr("sessions left this week")
            value: card.content.left !== "" ? card.content.left : "–"
        }

        DetailLabel {
            text: card.isKnown ? card.content.measured : card.content.waiting
            Accessible.ignored: false
        }

        OtherLimits {
            width: parent.width
            topPadding: Theme.sizes.gap
            limits: card.otherLimits
        }
    }
}
