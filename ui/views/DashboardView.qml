import QtQuick
import Vorn

/// The answer first, then a panel for every limit, then what explains the past.
FocusScope {
    id: dashboard

    required property SteerPresenter steer
    required property FreshnessPresenter freshness
    required property LimitPanelModel panels
    required property SessionWeekPresenter sessionWeek
    required property ResetsPresenter resets
    required property ActivityPresenter activity
    required property BreakdownPresenter breakdown
    property bool hasSettings: false
    /// As in `LimitChart`.
    property real pixelRatio: 1
    /// How wide it wants to be where nothing else decides.
    property int preferredWidth: 1000
    signal closeRequested
    signal refreshRequested
    signal settingsRequested
    signal chooseClaudeRequested
    signal exportRequested(content: string, format: string)

    readonly property bool isReady: freshness.phase === Phase.Ready
    readonly property real measure: width / Theme.sizes.scale
    readonly property bool isNarrow: measure < 920
    readonly property bool isTiny: measure < 640
    readonly property bool isWide: measure > 1400

    implicitWidth: preferredWidth
    implicitHeight: isReady ? scroll.y + scroll.contentHeight : head.height + page.implicitHeight
    focus: true
    LayoutMirroring.enabled: Theme.mirrored
    LayoutMirroring.childrenInherit: true
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Dashboard")
    Keys.onEscapePressed: closeRequested()

    Rectangle {
        anchors.fill: parent
        color: Theme.colors.window
    }

    Rectangle {
        anchors.fill: head
        color: dashboard.isReady ? Theme.colors.tint(dashboard.steer.status) : Theme.colors.surface
    }

    DashboardHead {
        id: head

        width: parent.width
        height: implicitHeight
        steer: dashboard.steer
        freshness: dashboard.freshness
        sessionWeek: dashboard.sessionWeek
        hasSettings: dashboard.hasSettings
        isTiny: dashboard.measure < 660
        isReady: dashboard.isReady
        onRefreshRequested: dashboard.refreshRequested()
        onSettingsRequested: dashboard.settingsRequested()
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
        isBusy: dashboard.freshness.isProbing
        onRetryRequested: dashboard.refreshRequested()
    }

    PhasePage {
        id: page

        anchors {
            top: underHead.bottom
            bottom: parent.bottom
            horizontalCenter: parent.horizontalCenter
        }
        width: Math.min(parent.width, Theme.sizes.popoverWidth * 1.5)
        visible: !dashboard.isReady
        freshness: dashboard.freshness
        onRetryRequested: dashboard.refreshRequested()
        onChooseClaudeRequested: dashboard.chooseClaudeRequested()
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
            panels: dashboard.panels
            sessionWeek: dashboard.sessionWeek
            resets: dashboard.resets
            activity: dashboard.activity
            breakdown: dashboard.breakdown
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
                choose: () => dashboard.exportRequested("history", "csv")
            },
            {
                text: qsTr("Export history as JSON…"),
                choose: () => dashboard.exportRequested("history", "json")
            },
            {
                text: qsTr("Export activity as CSV…"),
                choose: () => dashboard.exportRequested("activity", "csv")
            },
            {
                text: qsTr("Export activity as JSON…"),
                choose: () => dashboard.exportRequested("activity", "json")
            }
        ]
    }
}
