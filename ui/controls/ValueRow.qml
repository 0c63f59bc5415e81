import QtQuick
import Vorn.Controls

/// What something is, and how much of it.
Item {
    id: row

    required property string label
    required property string value
    property bool isSmall: false
    property bool isWarning: false
    readonly property int size: isSmall ? Theme.sizes.caption : Theme.sizes.body

    implicitHeight: name.height
    Accessible.role: Accessible.StaticText
    Accessible.name: label + " " + value

    Label {
        id: name

        anchors.left: parent.left
        width: parent.width - amount.implicitWidth - Theme.sizes.gap
        wrapMode: Text.Wrap
        font.pixelSize: row.size
        color: Theme.colors.secondText
        text: row.label
        Accessible.ignored: true
    }

    Label {
        id: amount

        anchors.right: parent.right
        font.pixelSize: row.size
        medium: row.isWarning || !row.isSmall
        color: row.isWarning ? Theme.colors.status(Status.AtRisk) : Theme.colors.text
        text: row.value
        Accessible.ignored: true
    }
}
