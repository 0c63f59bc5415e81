import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// What consumed the quota as Claude Code printed it.
Column {
    id: printed

    required property DashboardPresenter presenter
    readonly property printedContent content: presenter.printed

    spacing: Theme.sizes.between

    SegmentedTitle {
        width: parent.width
        text: printed.content.heading
        name: qsTr("Breakdown of Claude Code")
        options: printed.content.periods
        current: printed.content.period
        onPicked: index => printed.presenter.choosePrinted(index)
    }

    DetailLabel {
        visible: text !== ""
        text: printed.content.nothing
        Accessible.ignored: false
    }

    Column {
        id: findings

        width: parent.width
        visible: printed.content.findings.length > 0
        spacing: Theme.sizes.gap
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Findings")

        Label {
            width: parent.width
            semibold: true
            font.pixelSize: Theme.sizes.small
            color: Theme.colors.secondText
            text: qsTr("Findings")
        }

        Repeater {
            model: printed.content.findings

            delegate: FindingRow {
                required property var modelData

                width: findings.width
                finding: modelData
                numberWidth: widest.advanceWidth
            }
        }
    }

    Row {
        id: lists

        readonly property real each: (width - spacing) / 2

        width: parent.width
        spacing: Theme.sizes.edge

        RankedBars {
            width: lists.each
            title: qsTr("Top skills")
            shares: printed.content.skills
        }

        RankedBars {
            width: lists.each
            title: qsTr("Top subagents")
            shares: printed.content.subagents
        }
    }

    TextMetrics {
        id: widest

        font.pixelSize: Theme.sizes.body
        font.weight: Font.Medium
        text: "100%"
    }
}
