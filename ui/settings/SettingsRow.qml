import QtQuick
import Vorn.Controls

/// What can be chosen at the start, an explanation below, and what it is chosen with at the end.
Item {
    id: row

    property string label
    property string detail
    property string labelFamily
    property bool isSpoken: false
    property int indent: 0
    default property alias control: slot.data

    readonly property int inset: Theme.sizes.gap + Theme.sizes.tight
    /// What it is chosen with takes too much of the line, and stands below.
    readonly property bool isStacked: slot.width > width / 2

    /// The middle of the first line, for what stands before it.
    readonly property real firstMiddle: texts.y + firstLine.height / 2

    width: parent ? parent.width : 0
    implicitHeight: 2 * inset + (isStacked ? texts.height + inset + slot.height : Math.max(texts.height, slot.height))
    Accessible.ignored: !isSpoken
    Accessible.role: Accessible.StaticText
    Accessible.name: label + " " + detail

    Hairline {
        width: parent.width
        visible: row.y > 0
    }

    Column {
        id: texts

        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.between + row.indent
        y: row.isStacked ? row.inset : Math.round((row.height - height) / 2)
        width: row.width - row.indent - 2 * Theme.sizes.between - (slot.width > 0 && !row.isStacked ? slot.width + Theme.sizes.between : 0)
        spacing: Theme.sizes.tight

        Label {
            id: name

            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            font.family: row.labelFamily !== "" ? row.labelFamily : Application.font.family
            font.pixelSize: row.labelFamily !== "" ? Theme.sizes.small : Theme.sizes.body
            opacity: row.enabled ? 1 : 0.6
            text: row.label
            Accessible.ignored: true
        }

        DetailLabel {
            id: explanation

            visible: text !== ""
            text: row.detail
        }
    }

    FontMetrics {
        id: firstLine

        font: name.visible ? name.font : explanation.font
    }

    // Wraps where long words leave no room for all beside each other.
    Flow {
        id: slot

        readonly property real natural: {
            let sum = 0;
            for (let i = 0; i < visibleChildren.length; ++i) {
                sum += (i > 0 ? spacing : 0) + visibleChildren[i].width;
            }
            return sum;
        }

        anchors.right: parent.right
        anchors.rightMargin: Theme.sizes.between
        width: Math.min(natural, row.width - row.indent - 2 * Theme.sizes.between)
        y: row.isStacked ? row.height - row.inset - height : Math.round((row.height - height) / 2)
        spacing: Theme.sizes.gap
    }
}
