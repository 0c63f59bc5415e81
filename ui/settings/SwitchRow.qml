import QtQuick
import Vorn.Controls
import Vorn.Settings

/// A row that is switched on and off, wherever it is clicked.
SettingsRow {
    id: row

    required property bool checked
    signal toggled(bool on)

    MouseArea {
        parent: row
        anchors.fill: parent
        onClicked: row.toggled(!row.checked)
    }

    Switch {
        name: row.label
        description: row.detail
        checked: row.checked
        onToggled: on => row.toggled(on)
    }
}
