import QtQuick
import Vorn

/// A name and its value at the far edge.
Item {
    id: line

    required property string label
    required property string text
    property bool isWarning: false

    implicitHeight: value.implicitHeight
    Accessible.role: Accessible.StaticText
    Accessible.name: label + " " + text

    Label {
        anchors.left: parent.left
        font.pixelSize: Theme.sizes.caption
        color: Theme.colors.secondText
        text: line.label
        Accessible.ignored: true
    }

    Label {
        id: value

        anchors.right: parent.right
        font.pixelSize: Theme.sizes.caption
        medium: line.isWarning
        color: line.isWarning ? Theme.colors.status(Status.AtRisk) : Theme.colors.text
        text: line.text
        Accessible.ignored: true
    }
}
