import QtQuick
import Vorn.Charts
import Vorn.Controls
import Vorn.Dashboard

/// What of the dashboard scrolls: the panels, the cards beside or under them, and what is as wide as the window.
Item {
    id: page

    required property DashboardPresenter presenter
    /// As in `LimitChart`.
    property real pixelRatio: 1
    // How the room is shared out.
    required property bool isNarrow
    required property bool isTiny
    required property bool isWide

    readonly property int edge: Theme.sizes.edge
    readonly property int spacing: Theme.sizes.between
    readonly property real inner: width - 2 * edge
    readonly property int panelColumns: isWide ? 2 : 1
    /// The cards stand in the cell that an odd number of panels leaves empty.
    readonly property bool fillsCell: isWide && repeater.count % 2 === 1
    /// They stand in a column beside all panels.
    readonly property bool hasSide: !isNarrow && !fillsCell
    readonly property real sideWidth: Math.round(288 * Theme.sizes.scale)
    readonly property real panelsWidth: hasSide ? inner - sideWidth - spacing : inner
    readonly property real panelWidth: (panelsWidth - (panelColumns - 1) * spacing) / panelColumns

    height: rest.y + rest.height + edge

    Grid {
        id: limits

        anchors.left: parent.left
        anchors.leftMargin: page.edge
        y: page.spacing
        columns: page.panelColumns
        spacing: page.spacing

        Repeater {
            id: repeater

            model: page.presenter.panels

            delegate: LimitPanel {
                required property LimitPanelPresenter panel
                required property int index

                width: page.panelWidth
                presenter: panel
                namesEvenPace: index === 0
                pixelRatio: page.pixelRatio
                mostChartWidth: page.panelColumns > 1 ? 720 * Theme.sizes.scale : width
                isStacked: page.isTiny
                // Two beside each other are equally high.
                isTall: page.isWide || panel.isTight
            }
        }
    }

    // Session and week, and the resets.
    Grid {
        id: side

        readonly property real room: page.fillsCell ? page.panelWidth : page.hasSide ? page.sideWidth : page.inner
        readonly property real cardWidth: (room - (columns - 1) * spacing) / columns
        readonly property real lastPanel: repeater.itemAt(repeater.count - 1)?.y ?? 0
        // Two beside each other are equally high, and as high as a panel beside them.
        readonly property real cardHeight: columns === 1 ? 0 : Math.max(sessionWeekCard.implicitHeight, resetsCard.implicitHeight, page.fillsCell ? limits.height - lastPanel : 0)

        anchors.left: parent.left
        anchors.leftMargin: page.edge + page.inner - room
        y: page.fillsCell ? limits.y + lastPanel : page.hasSide ? limits.y : limits.y + limits.height + page.spacing
        columns: page.hasSide || page.isTiny ? 1 : 2
        spacing: page.spacing

        SessionWeekCard {
            id: sessionWeekCard

            width: side.cardWidth
            height: Math.max(implicitHeight, side.cardHeight)
            content: page.presenter.sessionWeek
            otherLimits: page.presenter.otherLimits
        }

        ResetsCard {
            id: resetsCard

            width: side.cardWidth
            height: Math.max(implicitHeight, side.cardHeight)
            presenter: page.presenter
        }
    }

    // What the past was made of.
    Column {
        id: rest

        anchors.left: parent.left
        anchors.leftMargin: page.edge
        width: page.inner
        y: Math.max(limits.y + limits.height, side.y + side.height) + page.spacing
        spacing: page.spacing

        ActivityStrip {
            width: parent.width
            presenter: page.presenter
        }

        BreakdownCard {
            width: parent.width
            presenter: page.presenter
        }
    }
}
