import QtQuick
import Vorn.Controls
import Vorn.Settings
import Vorn.Tray
import Vorn.Window

/// All that can be chosen, a page at a time; the pages are listed at the side.
WindowView {
    id: view

    required property SettingsPresenter settings
    required property LayoutListModel items
    required property LiveGlyph glyph
    required property ClaudePresenter claude
    property int page: 0

    readonly property list<string> titles: [qsTr("General"), qsTr("Menu bar"), qsTr("Notifications"), qsTr("Claude Code")]

    name: qsTr("Settings")
    // Long names of the pages take nothing away from what is on them.
    implicitWidth: Math.round(492 * Theme.sizes.scale) + side.wanted
    implicitHeight: Math.round(540 * Theme.sizes.scale)

    Rectangle {
        anchors.fill: parent
        color: Theme.colors.window
    }

    Rectangle {
        id: side

        readonly property int wanted: Math.max(Math.round(168 * Theme.sizes.scale), widest() + 2 * Theme.sizes.gap)

        anchors.left: parent.left
        height: parent.height
        width: Math.min(wanted, parent.width / 2)
        color: Theme.colors.sunken

        function widest(): real {
            let widest = heading.implicitWidth + Theme.sizes.gap;
            for (let i = 0; i < repeater.count; ++i) {
                widest = Math.max(widest, repeater.itemAt(i)?.implicitWidth ?? 0);
            }
            return widest;
        }

        Rectangle {
            anchors.right: parent.right
            width: Theme.sizes.hair
            height: parent.height
            color: Theme.colors.line
        }

        Label {
            id: heading

            anchors.left: parent.left
            anchors.leftMargin: Theme.sizes.inset
            y: Theme.sizes.inset
            semibold: true
            font.pixelSize: Theme.sizes.title + 1
            text: qsTr("Settings")
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        Column {
            id: tabs

            anchors {
                left: parent.left
                right: parent.right
                margins: Theme.sizes.gap
                top: heading.bottom
                topMargin: Theme.sizes.between
            }
            Accessible.role: Accessible.PageTabList
            Accessible.name: qsTr("Pages")

            Repeater {
                id: repeater

                model: view.titles

                delegate: SettingsTab {
                    required property int index
                    required property string modelData

                    width: tabs.width
                    text: modelData
                    symbol: [Icon.General, Icon.MenuBar, Icon.Bell, Icon.Terminal][index]
                    isCurrent: index === view.page
                    onTriggered: view.page = index
                    onStepped: by => view.page = Math.max(0, Math.min(index + by, view.titles.length - 1))
                }
            }
        }
    }

    // What had the keyboard may be gone with the page before.
    onPageChanged: repeater.itemAt(page)?.forceActiveFocus()
    Component.onCompleted: repeater.itemAt(page).focus = true

    Loader {
        anchors {
            left: side.right
            right: parent.right
            top: parent.top
            bottom: parent.bottom
        }
        sourceComponent: [general, menuBar, notifications, claudeCode][view.page]
    }

    Component {
        id: general

        GeneralPage {
            title: view.titles[0]
            settings: view.settings
            glyph: view.glyph
        }
    }

    Component {
        id: menuBar

        MenuBarPage {
            title: view.titles[1]
            settings: view.settings
            glyph: view.glyph
            items: view.items
        }
    }

    Component {
        id: notifications

        NotificationsPage {
            title: view.titles[2]
            settings: view.settings
        }
    }

    Component {
        id: claudeCode

        ClaudePage {
            title: view.titles[3]
            settings: view.settings
            claude: view.claude
            requests: view.requests
        }
    }
}
