import QtQuick
import Vorn.Controls
import Vorn.Settings
import Vorn.Window

SettingsPage {
    id: page

    required property ClaudePresenter claude
    required property AppRequests requests

    readonly property claudeContent shown: claude.content
    readonly property bool isDemonstration: shown.demonstration !== ""

    SettingsGroup {
        title: qsTr("Executable")

        SettingsRow {
            label: page.shown.executable
            labelFamily: page.shown.hasExecutable ? Theme.fixedFamily : ""
            detail: page.shown.origin
            isSpoken: true

            TextButton {
                text: qsTr("Choose…")
                visible: page.shown.canChoose
                onTriggered: page.requests.chooseClaude()
            }

            TextButton {
                visible: page.shown.canChoose && page.shown.isChosen
                text: qsTr("Automatic")
                onTriggered: page.claude.clearChoice()
            }

            TextButton {
                text: qsTr("Check now")
                enabled: page.shown.canCheck
                onTriggered: page.claude.check()
            }
        }

        ProblemRow {
            text: page.shown.executableProblem
        }

        ProblemRow {
            text: page.shown.checkProblem
        }

        SettingsRow {
            id: result

            visible: page.shown.checkResult !== ""
            detail: page.shown.checkResult
            indent: answered.visible ? answered.width + Theme.sizes.gap : 0
            isSpoken: true

            Icon {
                id: answered

                parent: result
                anchors.left: parent.left
                anchors.leftMargin: Theme.sizes.between
                y: result.firstMiddle - height / 2
                visible: !page.shown.isChecking
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

            label: page.shown.lineTitle
            detail: page.shown.lineText
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
                status: page.shown.isLineAmiss ? Status.Watch : Status.Comfortable
                color: page.shown.isLineSet ? Theme.colors.status(status) : Theme.colors.thirdText
            }

            TextButton {
                visible: page.shown.connectAction !== ""
                enabled: !page.isDemonstration
                primary: true
                text: page.shown.connectAction
                onTriggered: page.claude.connectLine()
            }

            TextButton {
                visible: page.shown.isLineSet
                enabled: !page.isDemonstration
                text: qsTr("Disconnect")
                onTriggered: page.claude.disconnectLine()
            }
        }

        SettingsRow {
            visible: page.shown.ownCommand !== ""
            detail: qsTr("Your own command still runs")
            isSpoken: true
            Accessible.name: detail + ": " + page.shown.ownCommand

            Label {
                width: Math.min(implicitWidth, page.width / 2)
                font.family: Theme.fixedFamily
                font.pixelSize: Theme.sizes.small
                elide: Text.ElideMiddle
                text: page.shown.ownCommand
                Accessible.ignored: true
            }
        }

        SettingsRow {
            visible: page.shown.lineRemark !== ""
            detail: page.shown.lineRemark
            isSpoken: true
        }

        ProblemRow {
            text: page.shown.lineProblem
        }

        SettingsRow {
            visible: page.isDemonstration
            detail: page.shown.demonstration
            indent: line.indent
            isSpoken: true
        }
    }

    SettingsGroup {
        title: qsTr("Local activity")

        SwitchRow {
            label: qsTr("Use local Claude Code activity for live pace")
            checked: page.settings.content.useLocalActivity
            onToggled: on => page.settings.setUseLocalActivity(on)
        }

        SettingsRow {
            label: page.shown.activityFolder
            labelFamily: page.isDemonstration ? "" : Theme.fixedFamily
            detail: page.shown.activityText
            isSpoken: true
        }
    }
}
