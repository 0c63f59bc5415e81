import QtQuick
import Vorn.Controls

/// A thing to do within a line of text.
Pressable {
    id: link

    required property string text

    opacity: enabled ? 1 : 0.5
    implicitWidth: label.implicitWidth
    implicitHeight: Theme.sizes.edge
    Accessible.name: text

    Label {
        id: label

        anchors.verticalCenter: parent.verticalCenter
        medium: true
        text: link.text
        font.pixelSize: Theme.sizes.small
        font.underline: area.containsMouse
        color: Theme.colors.accent
        Accessible.ignored: true
    }

    MouseArea {
        id: area

        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: link.triggered()
    }

    FocusRing {}
}
