import QtQuick
import Vorn.Controls
import Vorn.Settings
import Vorn.Tray

SettingsPage {
    id: page

    required property LiveGlyph glyph

    SettingsGroup {
        title: qsTr("Readings")

        SettingsRow {
            label: qsTr("Check usage every")
            detail: page.settings.content.isOften ? qsTr("The service may refuse to answer that often.") : qsTr("The status line adds live figures in between.")

            Picker {
                name: qsTr("Check usage every")
                options: page.settings.content.intervals
                current: page.settings.content.interval
                onPicked: index => page.settings.setInterval(index)
            }
        }

        SwitchRow {
            label: qsTr("Start at login")
            detail: page.settings.content.loginText
            enabled: page.settings.content.canLaunchAtLogin
            checked: page.settings.content.launchAtLogin
            onToggled: on => page.settings.setLaunchAtLogin(on)
        }

        ProblemRow {
            text: page.settings.content.loginProblem
        }
    }

    SettingsGroup {
        title: qsTr("Tray")
        visible: page.settings.content.hasCells

        RadioRow {
            id: perItem

            label: qsTr("One cell per item")
            detail: qsTr("Everything ticked under Menu bar stays readable.")
            checked: !page.settings.content.isSingleRing
            onChosen: page.settings.setSingleRing(false)
            Keys.onDownPressed: single.choose()

            GlyphPanel {
                visible: width < 240 * Theme.sizes.scale
                glyph: page.glyph
            }
        }

        RadioRow {
            id: single

            label: qsTr("A single ring")
            detail: qsTr("The first ring only; the rest is in the tooltip.")
            checked: page.settings.content.isSingleRing
            onChosen: page.settings.setSingleRing(true)
            Keys.onUpPressed: perItem.choose()

            GlyphPanel {
                glyph: page.glyph
                content: GlyphPreview.SingleRing
            }
        }
    }

    SettingsGroup {
        title: qsTr("Shortcut")

        SettingsRow {
            label: qsTr("Open from anywhere")
            isSpoken: true
            Accessible.name: label + ", " + page.settings.content.hotKeys

            Label {
                semibold: true
                color: page.settings.content.isHotKeyRegistered ? Theme.colors.text : Theme.colors.thirdText
                text: page.settings.content.hotKeys
                Accessible.ignored: true
            }
        }

        ProblemRow {
            text: page.settings.content.hotKeyProblem
        }
    }
}
