import QtQuick
import Vorn.Controls
import Vorn.Settings

/// One of two or more ways, each in a row of its own.
SettingsRow {
    id: row

    required property bool checked
    signal chosen

    /// As the arrow keys do: with the focus.
    function choose() {
        chosen();
        forceActiveFocus();
    }

    indent: mark.width + Theme.sizes.between
    activeFocusOnTab: true
    isSpoken: true
    Accessible.role: Accessible.RadioButton
    Accessible.name: label
    Accessible.description: detail
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: chosen()
    Keys.onSpacePressed: chosen()
    Keys.onReturnPressed: chosen()
    Keys.onEnterPressed: chosen()

    PressArea {
        parent: row
        radius: Theme.sizes.cardRadius
        onTriggered: row.chosen()
    }

    RadioMark {
        id: mark

        parent: row
        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.between
        anchors.verticalCenter: parent.verticalCenter
        checked: row.checked
    }

    FocusRing {
        parent: row
        visible: row.activeFocus
        distance: -Theme.sizes.tight
        radius: Theme.sizes.cardRadius
    }
}
