import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// What consumed the quota: what Vorn measured, and beside it what Claude Code printed.
Card {
    id: card

    required property DashboardPresenter presenter
    readonly property bool isStacked: content.width < 840 * Theme.sizes.scale
    readonly property real half: isStacked ? content.width : (content.width - 2 * Theme.sizes.edge) / 2
    readonly property int measuredColumns: isStacked && content.width >= 480 * Theme.sizes.scale ? 2 : 1

    implicitHeight: content.y + content.height + Theme.sizes.inset
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Breakdown")

    Label {
        id: title

        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.inset
        y: Theme.sizes.inset
        semibold: true
        font.pixelSize: Theme.sizes.title
        text: qsTr("Breakdown")
    }

    Item {
        id: content

        x: Theme.sizes.inset
        y: title.y + title.height + Theme.sizes.gap
        width: parent.width - 2 * Theme.sizes.inset
        height: card.isStacked ? printed.y + printed.height : Math.max(measured.height, printed.height)

        MeasuredShares {
            id: measured

            anchors.left: parent.left
            width: card.half
            presenter: card.presenter
            columns: card.measuredColumns
        }

        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: !card.isStacked
            width: Theme.sizes.hair
            height: parent.height
            color: Theme.colors.line
        }

        PrintedInsights {
            id: printed

            anchors.right: parent.right
            y: card.isStacked ? measured.height + Theme.sizes.edge : 0
            width: card.half
            presenter: card.presenter
        }
    }
}
