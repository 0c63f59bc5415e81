import QtQuick
import Vorn.Answer
import Vorn.Controls
import Vorn.Window

/// How fresh the figures are, and what else there is to do.
Item {
    id: foot

    required property freshnessContent freshness
    required property AppRequests requests

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
            busy: foot.freshness.isAsking
            onTriggered: foot.requests.refresh()
        }

        IconButton {
            name: qsTr("Dashboard")
            symbol: Icon.Chart
            onTriggered: foot.requests.openDashboard()
        }

        IconButton {
            name: qsTr("Settings")
            symbol: Icon.Sliders
            onTriggered: foot.requests.openSettings()
        }

        IconButton {
            name: qsTr("Quit Vorn")
            symbol: Icon.Power
            onTriggered: foot.requests.quit()
        }
    }
}
