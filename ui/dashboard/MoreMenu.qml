import QtQuick
import Vorn.Controls

/// A short list of things to do, over everything else of its window; closes on a choice, on Escape and on a click
/// beside it.
FocusScope {
    id: menu

    /// Each {text, choose}: what it says and the function it calls.
    property var entries: []
    property Item opener: null

    function openAt(item: Item) {
        opener = item;
        const corner = item.mapToItem(menu, 0, item.height);
        list.x = Math.max(Theme.sizes.gap, Math.min(corner.x + (Theme.mirrored ? 0 : item.width - list.width), width - list.width - Theme.sizes.gap));
        list.y = corner.y;
        visible = true;
        repeater.itemAt(0).forceActiveFocus();
    }
    function close() {
        visible = false;
        if (opener) {
            opener.forceActiveFocus();
        }
    }

    anchors.fill: parent
    visible: false
    z: 20
    Accessible.role: Accessible.PopupMenu
    Accessible.name: qsTr("More")
    Keys.onEscapePressed: close()

    MouseArea {
        anchors.fill: parent
        onPressed: menu.close()
        onWheel: wheel => wheel.accepted = true
    }

    Rectangle {
        id: list

        width: column.width + 2 * Theme.sizes.near
        height: column.height + 2 * Theme.sizes.near
        radius: Theme.sizes.controlRadius + Theme.sizes.near
        color: Theme.colors.surface
        border.color: Theme.colors.fieldLine
        border.width: Theme.sizes.hair

        Column {
            id: column

            x: Theme.sizes.near
            y: Theme.sizes.near

            Repeater {
                id: repeater

                model: menu.entries

                Pressable {
                    id: entry

                    required property int index
                    required property var modelData

                    function focusEntry(by: int) {
                        repeater.itemAt((index + by + repeater.count) % repeater.count).forceActiveFocus();
                    }

                    width: widest.width + 2 * Theme.sizes.between
                    height: Theme.sizes.control
                    Accessible.role: Accessible.MenuItem
                    Accessible.name: modelData.text
                    Keys.onDownPressed: focusEntry(1)
                    Keys.onUpPressed: focusEntry(-1)
                    onTriggered: {
                        menu.close();
                        modelData.choose();
                    }

                    PressArea {
                        onTriggered: entry.triggered()
                    }

                    Label {
                        anchors.left: parent.left
                        anchors.leftMargin: Theme.sizes.between
                        anchors.verticalCenter: parent.verticalCenter
                        text: entry.modelData.text
                        Accessible.ignored: true
                    }

                    FocusRing {
                        distance: -Theme.sizes.focusWidth
                    }
                }
            }
        }
    }

    TextMetrics {
        id: widest

        font.pixelSize: Theme.sizes.body
        text: menu.entries.reduce((longest, entry) => entry.text.length > longest.length ? entry.text : longest, "")
    }
}
