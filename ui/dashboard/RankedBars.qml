import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// Who took how much, the largest first.
Column {
    id: list

    required property string title
    required property var shares

    spacing: Theme.sizes.near
    visible: shares.length > 0
    Accessible.role: Accessible.List
    Accessible.name: title

    Label {
        bottomPadding: Theme.sizes.tight
        width: parent.width
        elide: Text.ElideRight
        semibold: true
        font.pixelSize: Theme.sizes.small
        color: Theme.colors.secondText
        text: list.title
    }

    Repeater {
        model: list.shares

        delegate: RankedBar {
            required property var modelData

            width: list.width
            share: modelData
            numberWidth: widest.advanceWidth
        }
    }

    TextMetrics {
        id: widest

        font.pixelSize: Theme.sizes.body
        text: "100%"
    }
}
