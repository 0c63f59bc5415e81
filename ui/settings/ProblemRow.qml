import QtQuick
import Vorn.Controls
import Vorn.Settings

/// A calm word about what does not work, in the box it belongs to.
SettingsRow {
    id: row

    required property string text

    height: visible ? implicitHeight : 0
    visible: text !== ""
    detail: text
    indent: sign.width + Theme.sizes.gap
    isSpoken: visible
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Icon {
        id: sign

        parent: row
        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.between
        y: row.firstMiddle - height / 2
        width: Theme.sizes.title
        height: width
        symbol: Icon.Warning
        color: Theme.colors.status(Status.AtRisk)
    }
}
