import QtQuick
import Vorn.Controls
import Vorn.Tray

Pressable {
    id: choice

    required property LiveGlyph glyph
    required property int style
    required property string title
    required property string description
    required property bool isCurrent
    signal stepped(int by)

    implicitHeight: Math.max(sample.height, name.height) + 2 * Theme.sizes.gap
    activeFocusOnTab: isCurrent || activeFocus
    Accessible.role: Accessible.RadioButton
    Accessible.name: title
    Accessible.description: description
    Accessible.checkable: true
    Accessible.checked: isCurrent
    Keys.onRightPressed: stepped(LayoutMirroring.enabled ? -1 : 1)
    Keys.onLeftPressed: stepped(LayoutMirroring.enabled ? 1 : -1)
    Keys.onDownPressed: stepped(1)
    Keys.onUpPressed: stepped(-1)

    Rectangle {
        anchors.fill: parent
        visible: choice.isCurrent
        radius: Theme.sizes.controlRadius
        color: Theme.highContrast ? "transparent" : Qt.alpha(Theme.colors.accent, 0.1)
        border.color: Theme.colors.accent
        border.width: Theme.sizes.focusWidth
    }

    PressArea {
        onTriggered: choice.triggered()
    }

    GlyphPreview {
        id: sample

        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.gap
        anchors.verticalCenter: parent.verticalCenter
        width: implicitWidth
        height: implicitHeight
        side: Math.round(24 * Theme.sizes.scale)
        glyph: choice.glyph
        content: GlyphPreview.Sample
        style: choice.style
        color: Theme.colors.text
    }

    Label {
        id: name

        anchors.left: sample.right
        anchors.leftMargin: Theme.sizes.gap
        anchors.right: parent.right
        anchors.rightMargin: Theme.sizes.near
        anchors.verticalCenter: parent.verticalCenter
        wrapMode: Text.Wrap
        font.pixelSize: Theme.sizes.small
        medium: choice.isCurrent
        text: choice.title
        Accessible.ignored: true
    }

    FocusRing {}
}
