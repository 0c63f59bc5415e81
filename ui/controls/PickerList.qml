import QtQuick
import Vorn.Controls

/// What a picker offers, over everything else in the window. Any click beside it closes it.
MouseArea {
    id: cover

    required property Item picker
    required property list<string> options
    required property int current
    property int marked: 0
    signal picked(int index)

    parent: picker.Window.contentItem
    anchors.fill: parent
    visible: false
    z: 20
    LayoutMirroring.enabled: Theme.mirrored
    LayoutMirroring.childrenInherit: true
    onPressed: visible = false
    onWheel: wheel => wheel.accepted = true

    /// Above the picker where there is no room below it.
    function place() {
        const at = picker.mapToItem(cover, 0, 0);
        const below = at.y + picker.height + Theme.sizes.near;
        box.x = at.x;
        box.y = below + box.height <= cover.height ? below : Math.max(0, at.y - box.height - Theme.sizes.near);
    }

    Rectangle {
        id: box

        width: picker.width
        height: column.height + 2 * Theme.sizes.near
        radius: Theme.sizes.controlRadius
        color: Theme.colors.surface
        border.color: Theme.colors.fieldLine
        border.width: Theme.sizes.hair

        Column {
            id: column

            x: Theme.sizes.near
            y: Theme.sizes.near
            width: parent.width - 2 * x

            Repeater {
                model: cover.options

                delegate: Item {
                    id: option

                    required property int index
                    required property string modelData

                    width: column.width
                    height: Theme.sizes.control
                    Accessible.role: Accessible.ListItem
                    Accessible.name: modelData
                    Accessible.selectable: true
                    Accessible.selected: index === cover.current
                    Accessible.onPressAction: cover.picked(index)

                    Rectangle {
                        anchors.fill: parent
                        visible: option.index === cover.marked
                        radius: Theme.sizes.controlRadius - Theme.sizes.tight
                        color: Theme.colors.accent
                    }

                    Label {
                        anchors.left: parent.left
                        anchors.leftMargin: Theme.sizes.gap
                        anchors.verticalCenter: parent.verticalCenter
                        semibold: option.index === cover.current
                        color: option.index === cover.marked ? Theme.colors.textOnAccent : Theme.colors.text
                        text: option.modelData
                        Accessible.ignored: true
                    }

                    MouseArea {
                        anchors.fill: parent
                        hoverEnabled: true
                        onEntered: cover.marked = option.index
                        onClicked: cover.picked(option.index)
                    }
                }
            }
        }
    }
}
