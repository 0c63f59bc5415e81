import QtQuick
import Vorn.Controls
import Vorn.Settings

SettingsPage {
    id: page

    readonly property bool works: settings.content.noticeProblem === ""

    SettingsGroup {
        title: qsTr("Tell me when")

        SwitchRow {
            label: qsTr("I'm on track to hit a limit")
            detail: qsTr("Session: within 2 hours. Weekly limits: within a day.")
            checked: page.settings.content.notifyAtRisk
            onToggled: on => page.settings.setNotifyAtRisk(on)
        }

        SwitchRow {
            label: qsTr("A limit is reached")
            checked: page.settings.content.notifyLimited
            onToggled: on => page.settings.setNotifyLimited(on)
        }

        SwitchRow {
            label: qsTr("A tight window resets")
            checked: page.settings.content.notifyReset
            onToggled: on => page.settings.setNotifyReset(on)
        }
    }

    SettingsGroup {
        title: qsTr("Try it")

        SettingsRow {
            label: qsTr("Send a test notification")
            detail: page.works ? page.settings.testText : ""

            TextButton {
                text: qsTr("Send test")
                enabled: page.works
                onTriggered: page.settings.sendTest()
            }
        }

        ProblemRow {
            text: page.works ? "" : page.settings.content.noticeProblem + " " + qsTr("Until then the tray alone warns.")
        }
    }
}
