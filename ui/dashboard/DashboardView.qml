import QtQuick
import Vorn.Answer
import Vorn.Controls
import Vorn.Dashboard
import Vorn.Window

/// The answer first, then a panel for every limit, then what explains the past.
WindowView {
    id: dashboard

    required property DashboardPresenter presenter
    /// As in `LimitChart`.
    property real pixelRatio: 1
    /// How wide it wants to be where nothing else decides.
    property int preferredWidth: 1000

    readonly property freshnessContent freshness: presenter.freshness
    readonly property bool isReady: freshness.stage === Stage.Ready
    readonly property real measure: width / Theme.sizes.scale
    readonly property bool isNarrow: measure < 920
    readonly property bool isTiny: measure < 640
    readonly property bool isWide: measure > 1400

    name: qsTr("Dashboard")
    implicitWidth: preferredWidth
    implicitHeight: isReady ? scroll.y + scroll.contentHeight : head.height + page.implicitHeight

    Rectangle {
        anchors.fill: parent
        color: Theme.colors.window
    }

    Rectangle {
        anchors.fill: head
        color: dashboard.isReady ? Theme.colors.tint(dashboard.presenter.head.status) : Theme.colors.surface
    }

    DashboardHead {
        id: head

        width: parent.width
        height: implicitHeight
        presenter: dashboard.presenter
        requests: dashboard.requests
        isTiny: dashboard.measure < 660
        isReady: dashboard.isReady
        onMoreRequested: at => menu.openAt(at)
    }

    Hairline {
        id: underHead

        anchors.top: head.bottom
        width: parent.width
    }

    Notice {
        id: notice

        anchors.top: underHead.bottom
        // Its text begins where the cards do.
        x: Theme.sizes.edge - Theme.sizes.inset
        width: parent.width - 2 * x
        height: visible ? implicitHeight : 0
        visible: dashboard.isReady && dashboard.freshness.problem !== ""
        problem: dashboard.freshness.problem
        remedy: dashboard.freshness.remedy
        canRetry: dashboard.freshness.canRetry
        isBusy: dashboard.freshness.isAsking
        onRetryRequested: dashboard.requests.refresh()
    }

    StagePage {
        id: page

        anchors {
            top: underHead.bottom
            bottom: parent.bottom
            horizontalCenter: parent.horizontalCenter
        }
        width: Math.min(parent.width, Theme.sizes.popoverWidth * 1.5)
        visible: !dashboard.isReady
        freshness: dashboard.freshness
        requests: dashboard.requests
    }

    ScrollArea {
        id: scroll

        anchors {
            top: notice.bottom
            bottom: parent.bottom
        }
        width: parent.width
        visible: dashboard.isReady
        contentHeight: content.height
        margin: Theme.sizes.between

        DashboardPage {
            id: content

            width: scroll.width
            presenter: dashboard.presenter
            pixelRatio: dashboard.pixelRatio
            isNarrow: dashboard.isNarrow
            isTiny: dashboard.isTiny
            isWide: dashboard.isWide
        }
    }

    MoreMenu {
        id: menu

        entries: [
            {
                text: qsTr("Export history as CSV…"),
                choose: () => dashboard.requests.exportTable(AppRequests.History, AppRequests.Csv)
            },
            {
                text: qsTr("Export history as JSON…"),
                choose: () => dashboard.requests.exportTable(AppRequests.History, AppRequests.Json)
            },
            {
                text: qsTr("Export activity as CSV…"),
                choose: () => dashboard.requests.exportTable(AppRequests.Activity, AppRequests.Csv)
            },
            {
                text: qsTr("Export activity as JSON…"),
                choose: () => dashboard.requests.exportTable(AppRequests.Activity, AppRequests.Json)
            }
        ]
    }
}
