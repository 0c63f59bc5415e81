import QtQuick
import Vorn

/// A thing to do within a line of text.
Item {
    id: link

    required property string text
    signal triggered

    implicitWidth: label.implicitWidth
    implicitHeight: Theme.sizes.edge
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: triggered()
    Keys.onReturnPressed: triggered()
    Keys.onEnterPressed: triggered()
    Keys.onSpacePressed: triggered()

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
