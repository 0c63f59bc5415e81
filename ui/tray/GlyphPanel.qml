import QtQuick
import Vorn.Controls
import Vorn.Tray

/// The tray's picture on the colour of the panel.
Rectangle {
    id: panel

    required property LiveGlyph glyph
    property alias content: picture.content
    property int inset: Theme.sizes.gap

    implicitWidth: picture.width + 2 * inset
    implicitHeight: picture.height + 2 * (Theme.sizes.near + Theme.sizes.tight)
    radius: Theme.sizes.controlRadius
    color: glyph.panelColor
    border.color: Theme.colors.line
    border.width: Theme.sizes.hair

    GlyphPreview {
        id: picture

        anchors.right: parent.right
        anchors.rightMargin: panel.inset
        anchors.verticalCenter: parent.verticalCenter
        width: implicitWidth
        height: implicitHeight
        side: Math.round(22 * Theme.sizes.scale)
        glyph: panel.glyph
    }
}
