import QtQuick
import Vorn

/// What of the dashboard scrolls: the panels, the cards beside or under them, and what is as wide as the window.
Item {
    id: page

    required property LimitPanelModel panels
    required property SessionWeekPresenter sessionWeek
    required property ResetsPresenter resets
    required property ActivityPresenter activity
    required property BreakdownPresenter breakdown
    /// As in `LimitChart`.
    property real pixelRatio: 1
    // How the room is shared out.
    required property bool isNarrow
    required property bool isTiny
    required property bool isWide

    readonly property int edge: Theme.sizes.edge
    readonly property int spacing: Theme.sizes.between
    readonly property real inner: width - 2 * edge
    /// The cards stand beside the panels.
    readonly property bool hasSide: !isNarrow
    readonly property real sideWidth: Math.round(288 * Theme.sizes.scale)
    readonly property real panelsWidth: hasSide ? inner - sideWidth - spacing : inner
    readonly property int panelColumns: isWide && repeater.count > 1 ? 2 : 1
    readonly property real under: Math.max(limits.height, hasSide ? side.height : 0)

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

            model: page.panels

            delegate: LimitPanel {
                required property LimitPanelPresenter panel
                required property int index

                width: (page.panelsWidth - (page.panelColumns - 1) * page.spacing) / page.panelColumns
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

    // Session and week, and the resets: beside the panels, or side by side under them.
    Grid {
        id: side

        readonly property real cardWidth: page.hasSide ? page.sideWidth : page.isTiny ? page.inner : (page.inner - page.spacing) / 2

        anchors.left: parent.left
        anchors.leftMargin: page.edge + (page.hasSide ? page.panelsWidth + page.spacing : 0)
        y: page.hasSide ? page.spacing : limits.y + limits.height + page.spacing
        columns: page.hasSide || page.isTiny ? 1 : 2
        spacing: page.spacing

        // Two beside each other are equally high.
        SessionWeekCard {
            id: sessionWeekCard

            width: side.cardWidth
            height: side.columns === 2 ? Math.max(implicitHeight, resetsCard.implicitHeight) : implicitHeight
            presenter: page.sessionWeek
        }

        ResetsCard {
            id: resetsCard

            width: side.cardWidth
            height: side.columns === 2 ? Math.max(implicitHeight, sessionWeekCard.implicitHeight) : implicitHeight
            presenter: page.resets
        }
    }

    // What the past was made of.
    Column {
        id: rest

        anchors.left: parent.left
        anchors.leftMargin: page.edge
        width: page.inner
        y: page.hasSide ? limits.y + page.under + page.spacing : side.y + side.height + page.spacing
        spacing: page.spacing

        ActivityStrip {
            width: parent.width
            presenter: page.activity
        }

        BreakdownCard {
            width: parent.width
            presenter: page.breakdown
        }
    }
}
