import QtQuick
import Vorn

/// Scrolls where it is higher than the window, and to whatever the keyboard reaches.
Flickable {
    id: page

    required property string title
    required property SettingsPresenter settings
    default property alias groups: groups.data
    readonly property Item focused: Window.activeFocusItem

    contentHeight: groups.height + 2 * Theme.sizes.inset
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    Accessible.role: Accessible.Pane
    Accessible.name: title

    onFocusedChanged: {
        if (focused && isWithin(focused)) {
            reveal(focused);
        }
    }

    function isWithin(item: Item): bool {
        for (let i = item; i; i = i.parent) {
            if (i === groups) {
                return true;
            }
        }
        return false;
    }

    function reveal(item: Item) {
        const top = item.mapToItem(contentItem, 0, 0).y - Theme.sizes.inset;
        const bottom = top + item.height + 2 * Theme.sizes.inset;
        const lowest = Math.max(0, contentHeight - height);
        if (top < contentY) {
            contentY = Math.max(0, top);
        } else if (bottom > contentY + height) {
            contentY = Math.min(lowest, Math.min(top, bottom - height));
        }
    }

    Column {
        id: groups

        x: Theme.sizes.inset + Theme.sizes.near
        y: Theme.sizes.inset
        width: page.width - 2 * x
        spacing: Theme.sizes.inset

        SettingsGroup {
            visible: page.settings.storeProblem !== ""

            ProblemRow {
                text: page.settings.storeProblem
            }
        }
    }

    ScrollMark {
        flickable: page
    }
}
