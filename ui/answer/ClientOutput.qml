import QtQuick
import Vorn.Controls

/// What the client itself printed, so set that nobody takes it for Vorn's words.
Rectangle {
    property alias text: output.text

    implicitHeight: output.height + 2 * Theme.sizes.gap
    radius: Theme.sizes.controlRadius
    color: Theme.colors.sunken
    border.color: Theme.colors.line
    border.width: Theme.sizes.hair

    Label {
        id: output

        anchors {
            left: parent.left
            right: parent.right
            margins: Theme.sizes.gap
            verticalCenter: parent.verticalCenter
        }
        font.family: Theme.fixedFamily
        font.pixelSize: Theme.sizes.small
        color: Theme.colors.secondText
        wrapMode: Text.WrapAnywhere
        maximumLineCount: 6
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignLeft
        Accessible.ignored: true
    }
}
