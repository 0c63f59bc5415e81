import QtQuick
import Vorn

/// What consumed the quota as Claude Code printed it.
Column {
    id: printed

    required property BreakdownPresenter presenter

    spacing: Theme.sizes.between

    SegmentedTitle {
        width: parent.width
        text: printed.presenter.printedHeading
        name: qsTr("Breakdown of Claude Code")
        options: printed.presenter.printedPeriods
        current: printed.presenter.printedPeriod
        onPicked: index => printed.presenter.printedPeriod = index
    }

    DetailLabel {
        visible: text !== ""
        text: printed.presenter.nothingPrinted
        Accessible.ignored: false
    }

    Column {
        id: findings

        width: parent.width
        visible: printed.presenter.findings.length > 0
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
            model: printed.presenter.findings

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
            shares: printed.presenter.skills
        }

        RankedBars {
            width: lists.each
            title: qsTr("Top subagents")
            shares: printed.presenter.subagents
        }
    }

    TextMetrics {
        id: widest

        font.pixelSize: Theme.sizes.body
        font.weight: Font.Medium
        text: "100%"
    }
}
