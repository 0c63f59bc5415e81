import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// A statement that Claude Code printed, with the share of use it is about.
Item {
    id: row

    required property printedFinding finding
    required property real numberWidth

    implicitHeight: texts.height
    Accessible.role: Accessible.ListItem
    Accessible.name: finding.percent + " " + finding.title + " " + finding.detail

    Label {
        id: percent

        anchors.left: parent.left
        width: row.numberWidth
        medium: true
        text: row.finding.percent
        Accessible.ignored: true
    }

    Column {
        id: texts

        anchors.left: percent.right
        anchors.leftMargin: Theme.sizes.gap
        anchors.right: parent.right

        Label {
            width: parent.width
            wrapMode: Text.Wrap
            text: row.finding.title
            Accessible.ignored: true
        }

        DetailLabel {
            visible: text !== ""
            text: row.finding.detail
        }
    }
}
