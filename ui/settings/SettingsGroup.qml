import QtQuick
import Vorn.Controls

/// Rows that belong together, in a box under their common name.
Column {
    id: group

    property string title
    default property alias rows: rows.data

    width: parent ? parent.width : 0
    spacing: Theme.sizes.near + Theme.sizes.tight
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    Label {
        anchors.left: parent.left
        width: Math.min(implicitWidth, parent.width)
        visible: text !== ""
        semibold: true
        elide: Text.ElideRight
        font.pixelSize: Theme.sizes.small
        color: Theme.colors.secondText
        text: group.title
        Accessible.ignored: true
    }

    Rectangle {
        width: parent.width
        height: rows.height
        radius: Theme.sizes.cardRadius
        color: Theme.colors.surface
        border.color: Theme.colors.line
        border.width: Theme.sizes.hair

        Column {
            id: rows

            width: parent.width
        }
    }
}
