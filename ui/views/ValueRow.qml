import QtQuick
import Vorn

/// What something is, and how much of it.
Item {
    id: row

    required property string label
    required property string value

    implicitHeight: name.height
    Accessible.role: Accessible.StaticText
    Accessible.name: label + " " + value

    Label {
        id: name

        anchors.left: parent.left
        width: parent.width - amount.implicitWidth - Theme.sizes.gap
        wrapMode: Text.Wrap
        color: Theme.colors.secondText
        text: row.label
        Accessible.ignored: true
    }

    Label {
        id: amount

        anchors.right: parent.right
        medium: true
        text: row.value
        Accessible.ignored: true
    }
}
