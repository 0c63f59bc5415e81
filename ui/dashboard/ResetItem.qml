import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// A planned reset, and the way to be rid of it.
Item {
    id: item

    required property resetRow reset
    signal removeRequested

    implicitHeight: texts.height + 2 * Theme.sizes.gap
    Accessible.role: Accessible.ListItem
    Accessible.name: reset.when + ", " + reset.detail

    Hairline {
        width: parent.width
    }

    Icon {
        id: flag

        anchors.left: parent.left
        y: Theme.sizes.gap + Theme.sizes.tight
        width: Theme.sizes.title
        height: width
        symbol: Icon.Flag
        color: item.reset.isPast ? Theme.colors.thirdText : Theme.colors.accent
    }

    Column {
        id: texts

        anchors {
            left: flag.right
            leftMargin: Theme.sizes.gap
            right: remove.left
            rightMargin: Theme.sizes.near
            verticalCenter: parent.verticalCenter
        }

        Label {
            width: parent.width
            medium: true
            elide: Text.ElideRight
            color: item.reset.isPast ? Theme.colors.secondText : Theme.colors.text
            text: item.reset.when
            Accessible.ignored: true
        }

        DetailLabel {
            maximumLineCount: 3
            elide: Text.ElideRight
            text: item.reset.detail
        }
    }

    IconButton {
        id: remove

        anchors.right: parent.right
        anchors.rightMargin: -Theme.sizes.gap
        anchors.verticalCenter: parent.verticalCenter
        name: qsTr("Remove %1").arg(item.reset.when)
        symbol: Icon.Cross
        onTriggered: item.removeRequested()
    }
}
