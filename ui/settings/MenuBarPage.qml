import QtQuick
import Vorn.Controls
import Vorn.Settings
import Vorn.Tray

SettingsPage {
    id: page

    required property LiveGlyph glyph
    required property LayoutListModel items

    // What changes below is seen here at once.
    GlyphPanel {
        width: parent.width
        implicitHeight: Theme.sizes.iconButton + Theme.sizes.near
        inset: Theme.sizes.between
        glyph: page.glyph
        Accessible.role: Accessible.Graphic
        Accessible.name: now.text + ": " + page.glyph.spoken

        Label {
            id: now

            anchors.left: parent.left
            anchors.leftMargin: Theme.sizes.between
            anchors.verticalCenter: parent.verticalCenter
            opacity: 0.75
            color: page.glyph.panelText
            text: page.glyph.isExample ? qsTr("Example") : qsTr("Now")
            Accessible.ignored: true
        }
    }

    Column {
        width: parent.width
        spacing: Theme.sizes.near + Theme.sizes.tight

        DetailLabel {
            text: qsTr("Tick what to show; drag or use the arrows to set the order, left to right. Items without data yet stay hidden until there is some.")
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }

        LayoutList {
            width: parent.width
            items: page.items
        }
    }

    SettingsGroup {
        StylePicker {
            width: parent.width
            glyph: page.glyph
            titles: page.settings.content.styleTitles
            descriptions: page.settings.content.styleDescriptions
            current: page.settings.content.glyphStyle
            onPicked: index => page.settings.setGlyphStyle(index)
        }

        SwitchRow {
            label: qsTr("Colour a ring when its limit is at risk")
            checked: page.settings.content.colorWhenAtRisk
            onToggled: on => page.settings.setColorWhenAtRisk(on)
        }
    }
}
