import QtQuick
import Vorn

/// What can be chosen at the start, an explanation below, and what it is chosen with at the end.
Item {
    id: row

    property string label
    property string detail
    property string labelFamily
    property bool isSpoken: false
    property int indent: 0
    default property alias control: slot.data

    width: parent ? parent.width : 0
    implicitHeight: Math.max(texts.height, slot.height) + 2 * (Theme.sizes.gap + Theme.sizes.tight)
    Accessible.ignored: !isSpoken
    Accessible.role: Accessible.StaticText
    Accessible.name: label + " " + detail

    Hairline {
        width: parent.width
        visible: row.y > 0
    }

    Column {
        id: texts

        anchors {
            left: parent.left
            leftMargin: Theme.sizes.between + row.indent
            right: slot.left
            rightMargin: slot.width > 0 ? Theme.sizes.between : 0
            verticalCenter: parent.verticalCenter
        }
        spacing: Theme.sizes.tight

        Label {
            id: name

            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            font.family: row.labelFamily !== "" ? row.labelFamily : Qt.application.font.family
            font.pixelSize: row.labelFamily !== "" ? Theme.sizes.small : Theme.sizes.body
            opacity: row.enabled ? 1 : 0.6
            text: row.label
            Accessible.ignored: true
        }

        DetailLabel {
            visible: text !== ""
            text: row.detail
        }
    }

    Row {
        id: slot

        anchors.right: parent.right
        anchors.rightMargin: Theme.sizes.between
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.sizes.gap
    }
}
