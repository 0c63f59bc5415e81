import QtQuick
import Vorn.Answer
import Vorn.Controls

/// Limits that are no windows: how much of each is used, without a verdict.
Column {
    id: list

    required property var limits

    visible: limits.length > 0
    spacing: Theme.sizes.between
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Other limits")

    Repeater {
        model: list.limits

        delegate: Item {
            id: row

            required property otherLimit modelData

            width: list.width
            implicitHeight: text.y + text.height
            Accessible.role: Accessible.ListItem
            Accessible.name: modelData.title + " " + modelData.percent + " " + modelData.text

            Label {
                id: title

                anchors.left: parent.left
                width: Math.min(implicitWidth, parent.width - percent.width - Theme.sizes.gap)
                elide: Text.ElideRight
                semibold: true
                text: row.modelData.title
                Accessible.ignored: true
            }

            Label {
                id: percent

                anchors.right: parent.right
                anchors.baseline: title.baseline
                semibold: true
                text: row.modelData.percent
                Accessible.ignored: true
            }

            Label {
                id: text

                y: bar.visible ? bar.y + bar.height + Theme.sizes.near : title.height
                width: parent.width
                wrapMode: Text.Wrap
                font.pixelSize: Theme.sizes.small
                color: Theme.colors.secondText
                text: row.modelData.text
                Accessible.ignored: true
            }

            Rectangle {
                id: bar

                y: title.height + Theme.sizes.near
                width: parent.width
                height: Theme.sizes.bar
                visible: row.modelData.percent !== ""
                radius: height / 2
                color: Theme.colors.track

                Rectangle {
                    anchors.left: parent.left
                    width: Math.max(height, parent.width * row.modelData.used)
                    height: parent.height
                    visible: row.modelData.used > 0
                    radius: parent.radius
                    color: row.modelData.isReached ? Theme.colors.status(Status.Limited) : Theme.colors.accent
                }
            }
        }
    }
}
