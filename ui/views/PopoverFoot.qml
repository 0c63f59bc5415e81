import QtQuick
import Vorn

/// How fresh the figures are, and what else there is to do.
Item {
    id: foot

    required property FreshnessPresenter freshness
    property bool hasDashboard: false
    property bool hasSettings: false
    signal refreshRequested
    signal dashboardRequested
    signal settingsRequested
    signal quitRequested

    implicitHeight: buttons.height + Theme.sizes.between

    Label {
        id: age

        anchors {
            left: parent.left
            leftMargin: Theme.sizes.inset
            right: buttons.left
            verticalCenter: parent.verticalCenter
        }
        elide: Text.ElideRight
        font.pixelSize: Theme.sizes.small
        color: Theme.colors.secondText
        text: foot.freshness.text

        HoverHandler {
            id: hover
        }

        Hint {
            text: age.truncated ? age.text : ""
            wanted: hover.hovered
        }
    }

    Row {
        id: buttons

        anchors {
            right: parent.right
            rightMargin: Theme.sizes.gap
            verticalCenter: parent.verticalCenter
        }

        RefreshButton {
            busy: foot.freshness.isProbing
            onTriggered: foot.refreshRequested()
        }

        IconButton {
            visible: foot.hasDashboard
            name: qsTr("Dashboard")
            symbol: Icon.Chart
            onTriggered: foot.dashboardRequested()
        }

        IconButton {
            visible: foot.hasSettings
            name: qsTr("Settings")
            symbol: Icon.Sliders
            onTriggered: foot.settingsRequested()
        }

        IconButton {
            name: qsTr("Quit Vorn")
            symbol: Icon.Power
            onTriggered: foot.quitRequested()
        }
    }
}
