import QtQuick
import Vorn

/// What consumed the quota: what Vorn measured, and beside it what Claude Code printed.
Card {
    id: card

    required property BreakdownPresenter presenter
    readonly property bool isStacked: content.width < 840 * Theme.sizes.scale
    readonly property real half: isStacked ? content.width : (content.width - 2 * Theme.sizes.edge) / 2
    readonly property int measuredColumns: isStacked && content.width >= 480 * Theme.sizes.scale ? 2 : 1

    implicitHeight: content.y + content.height + Theme.sizes.inset
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Breakdown")
    onVisibleChanged: presenter.isShown = visible
    Component.onCompleted: presenter.isShown = visible

    Label {
        id: title

        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.inset
        y: Theme.sizes.inset
        semibold: true
        font.pixelSize: Theme.sizes.title
        text: qsTr("Breakdown")
    }

    Item {
        id: content

        x: Theme.sizes.inset
        y: title.y + title.height + Theme.sizes.gap
        width: parent.width - 2 * Theme.sizes.inset
        height: card.isStacked ? printed.y + printed.height : Math.max(measured.height, printed.height)

        Column {
            id: measured

            anchors.left: parent.left
            width: card.half
            spacing: Theme.sizes.between

            Item {
                width: parent.width
                height: Theme.sizes.control

                Label {
                    anchors.left: parent.left
                    anchors.right: period.left
                    anchors.verticalCenter: parent.verticalCenter
                    elide: Text.ElideRight
                    color: Theme.colors.secondText
                    text: qsTr("Local activity")
                }

                Segments {
                    id: period

                    anchors.right: parent.right
                    name: qsTr("Local activity")
                    options: [qsTr("5 h"), qsTr("24 h"), qsTr("7 d")]
                    current: card.presenter.period
                    onPicked: index => card.presenter.period = index
                }
            }

            DetailLabel {
                visible: text !== ""
                text: card.presenter.nothingMeasured
                Accessible.ignored: false
            }

            Grid {
                id: bars

                readonly property real each: (measured.width - (columns - 1) * columnSpacing) / columns

                columns: card.measuredColumns
                columnSpacing: Theme.sizes.edge
                rowSpacing: measured.spacing

                RankedBars {
                    width: bars.each
                    title: qsTr("Projects")
                    shares: card.presenter.projects
                }

                RankedBars {
                    width: bars.each
                    title: qsTr("Model families")
                    shares: card.presenter.models
                }
            }
        }

        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: !card.isStacked
            width: Theme.sizes.hair
            height: parent.height
            color: Theme.colors.line
        }

        Column {
            id: printed

            anchors.right: parent.right
            y: card.isStacked ? measured.height + Theme.sizes.edge : 0
            width: card.half
            spacing: Theme.sizes.between

            Item {
                width: parent.width
                height: Theme.sizes.control

                Label {
                    anchors.left: parent.left
                    anchors.right: printedPeriod.visible ? printedPeriod.left : parent.right
                    anchors.rightMargin: Theme.sizes.gap
                    anchors.verticalCenter: parent.verticalCenter
                    elide: Text.ElideRight
                    color: Theme.colors.secondText
                    text: card.presenter.printedHeading
                }

                Segments {
                    id: printedPeriod

                    anchors.right: parent.right
                    visible: options.length > 1
                    name: qsTr("Breakdown of Claude Code")
                    options: card.presenter.printedPeriods
                    current: card.presenter.printedPeriod
                    onPicked: index => card.presenter.printedPeriod = index
                }
            }

            DetailLabel {
                visible: text !== ""
                text: card.presenter.nothingPrinted
                Accessible.ignored: false
            }

            Column {
                id: findings

                width: parent.width
                visible: card.presenter.findings.length > 0
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
                    model: card.presenter.findings

                    delegate: FindingRow {
                        required property var modelData

                        width: findings.width
                        finding: modelData
                        numberWidth: widest.advanceWidth
                    }
                }
            }

            Item {
                width: parent.width
                height: Math.max(skills.visible ? skills.height : 0, subagents.visible ? subagents.height : 0)
                visible: skills.visible || subagents.visible

                RankedBars {
                    id: skills

                    anchors.left: parent.left
                    width: (parent.width - (card.isStacked ? Theme.sizes.edge : Theme.sizes.inset)) / 2
                    title: qsTr("Top skills")
                    shares: card.presenter.skills
                }

                RankedBars {
                    id: subagents

                    anchors.right: parent.right
                    width: (parent.width - (card.isStacked ? Theme.sizes.edge : Theme.sizes.inset)) / 2
                    title: qsTr("Top subagents")
                    shares: card.presenter.subagents
                }
            }
        }
    }

    TextMetrics {
        id: widest

        font.pixelSize: Theme.sizes.body
        font.weight: Font.Medium
        text: "100%"
    }
}
