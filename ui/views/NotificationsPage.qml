import QtQuick
import Vorn

SettingsPage {
    id: page

    readonly property bool works: settings.noticeProblem === ""

    SettingsGroup {
        title: qsTr("Tell me when")

        SwitchRow {
            label: qsTr("I'm on track to hit a limit")
            detail: qsTr("Session: within 2 hours. Weekly limits: within a day.")
            checked: page.settings.notifyAtRisk
            onToggled: on => page.settings.notifyAtRisk = on
        }

        SwitchRow {
            label: qsTr("A limit is reached")
            checked: page.settings.notifyLimited
            onToggled: on => page.settings.notifyLimited = on
        }

        SwitchRow {
            label: qsTr("A tight window resets")
            checked: page.settings.notifyReset
            onToggled: on => page.settings.notifyReset = on
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
            text: page.works ? "" : page.settings.noticeProblem + " " + qsTr("Until then the tray alone warns.")
        }
    }
}
