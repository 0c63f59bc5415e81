import QtQuick
import Vorn

SettingsPage {
    id: page

    required property LiveGlyph glyph

    SettingsGroup {
        title: qsTr("Readings")

        SettingsRow {
            label: qsTr("Check usage every")
            detail: qsTr("The status line adds live figures in between.")

            Picker {
                name: qsTr("Check usage every")
                options: page.settings.intervals
                current: page.settings.interval
                onPicked: index => page.settings.interval = index
            }
        }

        SwitchRow {
            label: qsTr("Start at login")
            detail: page.settings.loginText
            enabled: page.settings.canLaunchAtLogin
            checked: page.settings.launchAtLogin
            onToggled: on => page.settings.launchAtLogin = on
        }

        ProblemRow {
            text: page.settings.loginProblem
        }
    }

    SettingsGroup {
        title: qsTr("Tray")
        visible: page.settings.hasCells

        RadioRow {
            id: perItem

            label: qsTr("One cell per item")
            detail: qsTr("Everything ticked under Menu bar stays readable.")
            checked: !page.settings.isSingleRing
            onChosen: page.settings.isSingleRing = false
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
            checked: page.settings.isSingleRing
            onChosen: page.settings.isSingleRing = true
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
            Accessible.name: label + ", " + page.settings.hotKeys

            Label {
                semibold: true
                color: page.settings.isHotKeyRegistered ? Theme.colors.text : Theme.colors.thirdText
                text: page.settings.hotKeys
                Accessible.ignored: true
            }
        }

        ProblemRow {
            text: page.settings.hotKeyProblem
        }
    }
}
