import QtQuick
import Vorn.Answer
import Vorn.Controls
import Vorn.Tray
import Vorn.Window

/// What stands there before there is anything to show.
Item {
    id: page

    required property freshnessContent freshness
    required property AppRequests requests

    readonly property bool failed: freshness.stage === Stage.Failed

    implicitHeight: content.height + 2 * Theme.sizes.edge
    Accessible.role: Accessible.StaticText
    Accessible.name: freshness.title + " " + freshness.explanation + " " + freshness.quoted

    Column {
        id: content

        anchors {
            left: parent.left
            right: parent.right
            leftMargin: Theme.sizes.edge
            rightMargin: Theme.sizes.edge
            verticalCenter: parent.verticalCenter
        }
        spacing: Theme.sizes.near

        RingItem {
            anchors.horizontalCenter: parent.horizontalCenter
            width: Theme.sizes.ring * 4 / 5
            height: width
            color: Theme.colors.thirdText
            mark: RingItem.Dash
        }

        Item {
            width: 1
            height: Theme.sizes.near
        }

        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            semibold: true
            font.pixelSize: Theme.sizes.title
            text: page.freshness.title
            Accessible.ignored: true
        }

        BalancedText {
            width: parent.width
            centered: true
            color: Theme.colors.secondText
            maximumLineCount: 8
            text: page.freshness.explanation
        }

        Item {
            width: 1
            height: Theme.sizes.near
            visible: said.visible
        }

        ClientOutput {
            id: said

            width: parent.width
            visible: text !== ""
            text: page.freshness.quoted
        }

        Item {
            width: 1
            height: Theme.sizes.gap
            visible: page.failed
        }

        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: page.failed
            spacing: Theme.sizes.gap

            TextButton {
                primary: !page.freshness.needsClaude
                text: qsTr("Try again")
                onTriggered: page.requests.refresh()
            }

            TextButton {
                primary: page.freshness.needsClaude
                text: qsTr("Choose claude…")
                onTriggered: page.requests.chooseClaude()
            }
        }
    }
}
