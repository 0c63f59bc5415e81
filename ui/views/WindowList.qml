import QtQuick
import Vorn

/// The cards of all windows.
Flickable {
    id: list

    required property WindowListModel windows
    readonly property Item focused: Window.activeFocusItem

    implicitHeight: cards.height
    contentHeight: cards.height
    clip: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Limits")

    onFocusedChanged: {
        if (focused && focused.parent === cards) {
            reveal(focused);
        }
    }

    function reveal(card: Item) {
        if (card.y < contentY) {
            contentY = card.y;
        } else if (card.y + card.height > contentY + height) {
            contentY = Math.min(card.y, card.y + card.height - height);
        }
    }

    Column {
        id: cards

        width: list.width

        Repeater {
            model: list.windows

            delegate: WindowCard {
                id: card

                required property int index

                width: parent ? parent.width : 0

                Hairline {
                    width: parent.width
                    visible: card.index > 0
                }
            }
        }
    }

    ScrollMark {
        flickable: list
    }
}
