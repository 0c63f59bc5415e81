import QtQuick
import Vorn.Charts
import Vorn.Controls

/// One limit in full: its verdict, how it got here and where it leads, and how fast.
Card {
    id: panel

    required property LimitPanelPresenter presenter
    property bool namesEvenPace: false
    property real pixelRatio: 1
    /// The pace stands under the chart rather than beside it.
    property bool isStacked: false
    /// As high as the panel of the tight limit.
    property bool isTall: presenter.isTight

    readonly property int chartHeight: Math.round((isTall ? 172 : 124) * Theme.sizes.scale)
    property real mostChartWidth: width

    implicitHeight: title.height + body.height + 2 * Theme.sizes.inset - Theme.sizes.near
    Accessible.role: Accessible.Grouping
    Accessible.name: presenter.card.spoken

    LimitTitle {
        id: title

        anchors {
            left: parent.left
            right: parent.right
            top: parent.top
            leftMargin: Theme.sizes.inset
            rightMargin: Theme.sizes.inset
            topMargin: Theme.sizes.between
        }
        card: panel.presenter.card
    }

    Item {
        id: body

        anchors {
            left: parent.left
            right: parent.right
            top: title.bottom
            leftMargin: Theme.sizes.inset
            rightMargin: Theme.sizes.inset
        }
        height: panel.isStacked ? chart.height + pace.height + Theme.sizes.between : Math.max(chart.height, pace.implicitHeight)

        // The chart does not mirror, the place where it stands does.
        Item {
            id: chart

            readonly property real beside: parent.width - pace.implicitWidth - Theme.sizes.gap

            anchors.left: parent.left
            width: panel.isStacked ? parent.width : Math.min(beside, panel.mostChartWidth)
            height: Math.max(panel.chartHeight, panel.isStacked ? 0 : pace.implicitHeight)

            LimitChart {
                anchors.fill: parent
                panel: panel.presenter
                namesEvenPace: panel.namesEvenPace
                pixelRatio: panel.pixelRatio
            }
        }

        PaceColumn {
            id: pace

            anchors.right: parent.right
            anchors.bottom: parent.bottom
            width: panel.isStacked ? parent.width : implicitWidth
            height: panel.isStacked ? implicitHeight : Math.max(panel.chartHeight, implicitHeight)
            pace: panel.presenter.pace
            isWide: panel.isStacked
        }
    }
}
