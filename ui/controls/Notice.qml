import QtQuick
import Vorn.Controls

/// A calm word about something that did not work while nothing is lost.
Item {
    id: notice

    required property string problem
    required property string remedy
    property bool canRetry: true
    property bool isBusy: false
    signal retryRequested

    implicitHeight: texts.height + 2 * Theme.sizes.gap + Theme.sizes.near
    Accessible.role: Accessible.AlertMessage
    Accessible.name: problem + " " + remedy

    Icon {
        id: sign

        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.inset
        anchors.top: texts.top
        anchors.topMargin: Theme.sizes.hair
        width: Theme.sizes.title
        height: width
        symbol: Icon.Warning
        color: Theme.colors.secondText
    }

    Column {
        id: texts

        anchors {
            left: sign.right
            leftMargin: Theme.sizes.gap
            right: parent.right
            rightMargin: Theme.sizes.inset
            verticalCenter: parent.verticalCenter
        }
        spacing: Theme.sizes.tight

        Label {
            anchors.left: parent.left
            width: parent.width - (retry.visible ? retry.width + Theme.sizes.gap : 0)
            medium: true
            font.pixelSize: Theme.sizes.small
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
            text: notice.problem
            Accessible.ignored: true
        }

        DetailLabel {
            visible: text !== ""
            text: notice.remedy
        }
    }

    LinkButton {
        id: retry

        anchors.right: parent.right
        anchors.rightMargin: Theme.sizes.inset
        anchors.top: texts.top
        anchors.topMargin: -Theme.sizes.near
        visible: notice.canRetry
        enabled: !notice.isBusy
        text: qsTr("Try again")
        onTriggered: notice.retryRequested()
    }
}
