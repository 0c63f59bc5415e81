import QtQuick
import Vorn

/// The answer, large, and beside it what the week still holds and what can be done.
Item {
    id: head

    required property SteerPresenter steer
    required property FreshnessPresenter freshness
    required property SessionWeekPresenter sessionWeek
    property bool hasSettings: false
    /// Too narrow for more than the answer and the buttons.
    property bool isTiny: false
    /// Whether there is an answer.
    property bool isReady: true
    signal refreshRequested
    signal settingsRequested
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
        steer: head.steer
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
        visible: head.isReady && head.sessionWeek.left !== "" && !head.isTiny
        Accessible.role: Accessible.StaticText
        Accessible.name: head.sessionWeek.left + " " + caption.text

        Label {
            anchors.right: parent.right
            semibold: true
            font.pixelSize: Theme.sizes.largeHead
            text: head.sessionWeek.left
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
                busy: head.freshness.isProbing
                onTriggered: head.refreshRequested()
            }

            IconButton {
                visible: head.hasSettings
                name: qsTr("Settings")
                symbol: Icon.Sliders
                onTriggered: head.settingsRequested()
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
            text: head.freshness.text
        }
    }
}
