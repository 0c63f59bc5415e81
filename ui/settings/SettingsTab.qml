import QtQuick
import Vorn.Controls

/// One page in the list of pages. The arrow keys go from one to the next.
Pressable {
    id: tab

    required property string text
    required property int symbol
    required property bool isCurrent
    signal stepped(int by)

    // As wide as it is as the current one, so that the list keeps its width.
    implicitWidth: icon.width + 3 * Theme.sizes.gap + Math.ceil(metrics.advanceWidth)
    implicitHeight: Theme.sizes.iconButton
    activeFocusOnTab: isCurrent || activeFocus
    Accessible.role: Accessible.PageTab
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: isCurrent
    Keys.onDownPressed: stepped(1)
    Keys.onUpPressed: stepped(-1)

    Rectangle {
        anchors.fill: parent
        visible: tab.isCurrent
        radius: Theme.sizes.controlRadius
        color: Theme.highContrast ? "transparent" : Qt.alpha(Theme.colors.accent, 0.18)
        border.color: Theme.colors.text
        border.width: Theme.highContrast ? Theme.sizes.hair : 0
    }

    PressArea {
        onTriggered: tab.triggered()
    }

    Icon {
        id: icon

        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.gap
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.sizes.icon
        height: width
        symbol: tab.symbol
        color: tab.isCurrent ? Theme.colors.accent : Theme.colors.secondText
    }

    Label {
        id: label

        anchors.left: icon.right
        anchors.leftMargin: Theme.sizes.gap
        anchors.right: parent.right
        anchors.rightMargin: Theme.sizes.near
        anchors.verticalCenter: parent.verticalCenter
        elide: Text.ElideRight
        semibold: tab.isCurrent
        color: tab.isCurrent ? Theme.colors.text : Theme.colors.secondText
        text: tab.text
        Accessible.ignored: true
    }

    TextMetrics {
        id: metrics

        font.family: label.font.family
        font.pixelSize: label.font.pixelSize
        font.weight: Font.DemiBold
        text: tab.text
    }

    FocusRing {
        distance: 0
    }
}
