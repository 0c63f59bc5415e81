import QtQuick
import Vorn.Controls
import Vorn.Settings

/// Groups of settings, one below the other.
ScrollArea {
    id: page

    required property string title
    required property SettingsPresenter settings
    default property alias groups: groups.data

    contentHeight: groups.height + 2 * Theme.sizes.inset
    margin: Theme.sizes.inset
    Accessible.role: Accessible.Pane
    Accessible.name: title

    Column {
        id: groups

        x: Theme.sizes.inset + Theme.sizes.near
        y: Theme.sizes.inset
        width: page.width - 2 * x
        spacing: Theme.sizes.inset

        SettingsGroup {
            visible: page.settings.content.storeProblem !== ""

            ProblemRow {
                text: page.settings.content.storeProblem
            }
        }
    }
}
