import QtQuick
import Vorn

SettingsPage {
    id: page

    required property ClaudePresenter claude
    signal chooseRequested

    readonly property bool isDemonstration: claude.demonstration !== ""

    SettingsGroup {
        title: qsTr("Executable")

        SettingsRow {
            label: page.claude.executable
            labelFamily: page.claude.hasExecutable ? page.claude.fixedFamily : ""
            detail: page.claude.origin
            isSpoken: true

            TextButton {
                text: qsTr("Choose…")
                visible: page.claude.canChoose
                onTriggered: page.chooseRequested()
            }

            TextButton {
                visible: page.claude.canChoose && page.claude.isChosen
                text: qsTr("Automatic")
                onTriggered: page.claude.clearChoice()
            }

            TextButton {
                text: qsTr("Check now")
                enabled: page.claude.canCheck
                onTriggered: page.claude.check()
            }
        }

        ProblemRow {
            text: page.claude.executableProblem
        }

        ProblemRow {
            text: page.claude.hasCheckFailed ? page.claude.checkResult : ""
        }

        SettingsRow {
            id: result

            visible: !page.claude.hasCheckFailed && page.claude.checkResult !== ""
            detail: page.claude.checkResult
            indent: answered.visible ? answered.width + Theme.sizes.gap : 0
            isSpoken: true

            Icon {
                id: answered

                parent: result
                anchors.left: parent.left
                anchors.leftMargin: Theme.sizes.between
                y: result.firstMiddle - height / 2
                visible: !page.claude.isChecking
                width: Theme.sizes.icon
                height: width
                symbol: Icon.Tick
                color: Theme.colors.accent
            }
        }
    }

    SettingsGroup {
        title: qsTr("Status line")

        SettingsRow {
            id: line

            label: page.claude.lineTitle
            detail: page.claude.lineText
            indent: mark.width + Theme.sizes.gap
            isSpoken: true

            StatusMark {
                id: mark

                parent: line
                anchors.left: parent.left
                anchors.leftMargin: Theme.sizes.between
                y: line.firstMiddle - height / 2
                width: Theme.sizes.mark
                height: width
                status: page.claude.lineState === ClaudePresenter.NeedsReconnecting ? Status.Watch : Status.Comfortable
                color: page.claude.lineState === ClaudePresenter.NotConnected ? Theme.colors.thirdText : Theme.colors.status(status)
            }

            TextButton {
                visible: page.claude.lineState !== ClaudePresenter.Connected
                enabled: !page.isDemonstration
                primary: true
                text: page.claude.lineState === ClaudePresenter.NeedsReconnecting ? qsTr("Reconnect") : qsTr("Connect")
                onTriggered: page.claude.connectLine()
            }

            TextButton {
                visible: page.claude.lineState !== ClaudePresenter.NotConnected
                enabled: !page.isDemonstration
                text: qsTr("Disconnect")
                onTriggered: page.claude.disconnectLine()
            }
        }

        SettingsRow {
            visible: page.claude.ownCommand !== ""
            detail: qsTr("Your own command still runs")
            isSpoken: true
            Accessible.name: detail + ": " + page.claude.ownCommand

            Label {
                width: Math.min(implicitWidth, page.width / 2)
                font.family: page.claude.fixedFamily
                font.pixelSize: Theme.sizes.small
                elide: Text.ElideMiddle
                text: page.claude.ownCommand
                Accessible.ignored: true
            }
        }

        ProblemRow {
            text: page.claude.lineProblem
        }

        SettingsRow {
            visible: page.isDemonstration
            detail: page.claude.demonstration
            indent: line.indent
            isSpoken: true
        }
    }

    SettingsGroup {
        title: qsTr("Local activity")

        SwitchRow {
            label: qsTr("Use local Claude Code activity for live pace")
            checked: page.settings.useLocalActivity
            onToggled: on => page.settings.useLocalActivity = on
        }

        SettingsRow {
            label: page.claude.activityFolder
            labelFamily: page.isDemonstration ? "" : page.claude.fixedFamily
            detail: page.claude.activityText
            isSpoken: true
        }
    }
}
