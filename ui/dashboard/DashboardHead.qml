import QtQuick
import Vorn.Answer
import Vorn.Controls
import Vorn.Dashboard
import Vorn.Window

/// The answer, large, and beside it what the week still holds and what can be done.
Item {
    id: head

    required property DashboardPresenter presenter
    required property AppRequests requests
    /// Too narrow for more than the answer and the buttons.
    property bool isTiny: false
    /// Whether there is an answer.
    property bool isReady: true
    signal moreRequested(at: Item)

    implicitHeight: Math.max(answer.implicitHeight, controls.height + 2 * Theme.sizes.between)

    SteerHead {
        id: answer

        anchors {
            left: parent.left
            leftMargin: Theme.sizes.edge - Theme.sizes.inset
            right: left.visible ? left.left : controls.left
            verticalCenter: parent.verticalCenter
        }
        height: implicitHeight
        visible: head.isReady
        content: head.presenter.head
        headlineSize: Theme.sizes.largeHead
        ringSize: Math.round(64 * Theme.sizes.scale)
    }

    Label {
        anchors {
            left: parent.left
            leftMargin: Theme.sizes.edge
            right: controls.left
            verticalCenter: parent.verticalCenter
        }
        visible: !head.isReady
        semibold: true
        font.pixelSize: Theme.sizes.largeHead
        elide: Text.ElideRight
        text: qsTr("Dashboard")
    }

    Column {
        id: left

        anchors {
            right: divider.left
            rightMargin: Theme.sizes.edge
            verticalCenter: parent.verticalCenter
        }
        visible: head.isReady && head.presenter.sessionWeek.left !== "" && !head.isTiny
        Accessible.role: Accessible.StaticText
        Accessible.name: head.presenter.sessionWeek.left + " " + caption.text

        Label {
            anchors.right: parent.right
            semibold: true
            font.pixelSize: Theme.sizes.largeHead
            text: head.presenter.sessionWeek.left
            Accessible.ignored: true
        }

        Label {
            id: caption

            color: Theme.colors.secondText
            text: qsTr("sessions left this week")
            Accessible.ignored: true
        }
    }

    Rectangle {
        id: divider

        anchors {
            right: controls.left
            rightMargin: Theme.sizes.inset
            top: controls.top
            bottom: controls.bottom
        }
        visible: left.visible
        width: Theme.sizes.hair
        color: Theme.colors.line
    }

    Column {
        id: controls

        anchors {
            right: parent.right
            rightMargin: Theme.sizes.edge - Theme.sizes.gap
            verticalCenter: parent.verticalCenter
        }

        Row {
            anchors.right: parent.right

            RefreshButton {
                busy: head.presenter.freshness.isAsking
                onTriggered: head.requests.refresh()
            }

            IconButton {
                name: qsTr("Settings")
                symbol: Icon.Sliders
                onTriggered: head.requests.openSettings()
            }

            IconButton {
                id: more

                name: qsTr("More")
                symbol: Icon.Ellipsis
                onTriggered: head.moreRequested(more)
            }
        }

        Label {
            anchors.right: parent.right
            anchors.rightMargin: Theme.sizes.gap
            font.pixelSize: Theme.sizes.small
            color: Theme.colors.secondText
            text: head.presenter.freshness.text
        }
    }
}
