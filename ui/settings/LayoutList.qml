import QtQuick
import Vorn.Controls
import Vorn.Settings

/// The things the tray can show. Up and Down go from row to row, with Alt they take the row along; Space ticks.
Rectangle {
    id: box

    required property LayoutListModel items

    height: list.contentHeight + 2 * Theme.sizes.hair
    radius: Theme.sizes.cardRadius
    color: Theme.colors.surface
    border.color: Theme.colors.line
    border.width: Theme.sizes.hair

    ListView {
        id: list

        readonly property int rowHeight: Math.round(27 * Theme.sizes.scale)

        anchors.fill: parent
        anchors.margins: Theme.sizes.hair
        interactive: false
        activeFocusOnTab: true
        highlightFollowsCurrentItem: false
        model: box.items
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Items in the menu bar")

        moveDisplaced: Transition {
            NumberAnimation {
                property: "y"
                duration: Theme.openDuration
            }
        }
        move: Transition {
            NumberAnimation {
                property: "y"
                duration: Theme.openDuration
            }
        }

        delegate: LayoutRow {
            width: list.width
            height: list.rowHeight
            count: list.count
            onTickRequested: on => box.items.setOn(index, on)
            onStepRequested: by => box.items.step(index, by)
            onMoveRequested: to => box.items.move(index, to)
        }
    }
}
