import QtQuick
import Vorn

/// What stands there before there is anything to show.
Item {
    id: page

    required property FreshnessPresenter freshness
    signal retryRequested
    signal chooseClaudeRequested

    readonly property bool failed: freshness.phase === Phase.Failed

    implicitHeight: content.height + 2 * Theme.sizes.edge
    Accessible.role: Accessible.StaticText
    Accessible.name: freshness.phaseTitle + " " + freshness.phaseText

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
            text: page.freshness.phaseTitle
            Accessible.ignored: true
        }

        BalancedText {
            width: parent.width
            centered: true
            color: Theme.colors.secondText
            maximumLineCount: 8
            text: page.freshness.phaseText
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
                onTriggered: page.retryRequested()
            }

            TextButton {
                primary: page.freshness.needsClaude
                text: qsTr("Choose claude…")
                onTriggered: page.chooseClaudeRequested()
            }
        }
    }
}
