import QtQuick
import Vorn.Controls

/// Scrolls where its content is higher than it is, and to whatever the keyboard reaches in it.
Flickable {
    id: area

    /// What stays in sight above and below that.
    property int margin: 0
    readonly property Item focused: Window.activeFocusItem

    clip: interactive
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    onFocusedChanged: {
        if (holds(focused)) {
            reveal(focused);
        }
    }

    function holds(item: Item): bool {
        for (let ancestor = item; ancestor; ancestor = ancestor.parent) {
            if (ancestor === contentItem) {
                return true;
            }
        }
        return false;
    }
    function reveal(item: Item) {
        const top = item.mapToItem(contentItem, 0, 0).y - margin;
        const bottom = top + item.height + 2 * margin;
        if (top < contentY) {
            contentY = Math.max(0, top);
        } else if (bottom > contentY + height) {
            contentY = Math.max(0, Math.min(top, bottom - height, contentHeight - height));
        }
    }

    ScrollMark {
        flickable: area
    }
}
