import QtQuick
import Vorn.Answer
import Vorn.Controls
import Vorn.Popover

/// The cards of all windows.
ScrollArea {
    id: list

    required property WindowListModel windows
    required property var otherLimits

    implicitHeight: cards.height
    contentHeight: cards.height
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Limits")

    Column {
        id: cards

        width: list.width

        Repeater {
            model: list.windows

            delegate: WindowCard {
                id: block

                required property int index

                width: parent ? parent.width : 0

                Hairline {
                    width: parent.width
                    visible: block.index > 0
                }
            }
        }

        Hairline {
            width: parent.width
            visible: others.visible
        }

        OtherLimits {
            id: others

            x: Theme.sizes.inset
            width: parent.width - 2 * x
            topPadding: Theme.sizes.gap
            bottomPadding: Theme.sizes.inset
            limits: list.otherLimits
        }
    }
}
