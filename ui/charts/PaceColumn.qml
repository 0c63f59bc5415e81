import QtQuick
import Vorn.Charts
import Vorn.Controls

/// How fast a window was used over five stretches of time, against what can be sustained; and where that leads.
Item {
    id: column

    required property pace pace
    /// The bars take what room there is.
    property bool isWide: false
    readonly property int rowHeight: Math.max(leastRow, Math.floor((height - rest.height - heading.height - Theme.sizes.gap) / Math.max(1, pace.rows.length)))
    readonly property int leastRow: Math.ceil(metrics.height) + Theme.sizes.tight
    readonly property real barStart: labelWidth + Theme.sizes.gap
    readonly property real leastBarWidth: Theme.sizes.edge * 2 + Theme.sizes.gap
    readonly property real barWidth: leastBarWidth + (isWide ? Math.max(0, width - leastWidth) : 0)
    readonly property real leastWidth: barStart + leastBarWidth + Math.ceil(widestRate.width + widestFactor.width) + 2 * Theme.sizes.gap
    readonly property real labelWidth: Math.ceil(widestLabel.width)
    readonly property bool mirrored: LayoutMirroring.enabled

    implicitWidth: leastWidth
    implicitHeight: heading.height + 5 * leastRow + rest.height + Theme.sizes.gap

    FontMetrics {
        id: metrics

        font.pixelSize: Theme.sizes.caption
    }
    TextMetrics {
        id: widestLabel

        font.pixelSize: Theme.sizes.caption
        text: "Window avg"
    }
    TextMetrics {
        id: widestRate

        font.pixelSize: Theme.sizes.caption
        text: "<0.1%/day"
    }
    TextMetrics {
        id: widestFactor

        font.pixelSize: Theme.sizes.caption
        font.weight: Font.Medium
        text: "×0.00"
    }

    Item {
        id: heading

        width: parent.width
        height: title.implicitHeight + Theme.sizes.tight

        Label {
            id: title

            anchors.left: parent.left
            font.pixelSize: Theme.sizes.caption
            color: Theme.colors.secondText
            text: qsTr("Pace")
            Accessible.ignored: true
        }

        Label {
            anchors.left: parent.left
            anchors.leftMargin: column.barStart + column.barWidth / 2 + Theme.sizes.near + 1
            font.pixelSize: Theme.sizes.caption
            color: Theme.colors.secondText
            text: column.pace.sustainable
            Accessible.ignored: true
        }
    }

    Column {
        id: rows

        anchors.top: heading.bottom
        width: parent.width

        Repeater {
            model: column.pace.rows.length

            PaceRow {
                required property int index

                width: rows.width
                height: column.rowHeight
                reading: column.pace.rows[index]
                barStart: column.barStart
                barWidth: column.barWidth
                factorWidth: Math.ceil(widestFactor.width)
            }
        }
    }

    // What can be sustained, through all rows.
    Rectangle {
        visible: column.pace.sustainable !== ""
        readonly property real centre: column.barStart + column.barWidth / 2

        x: (column.mirrored ? column.width - centre : centre) - width / 2
        y: heading.y + Theme.sizes.near
        width: 2
        height: rows.y + rows.height - y - Theme.sizes.tight
        color: Theme.colors.text
    }

    Column {
        id: rest

        anchors.bottom: parent.bottom
        width: parent.width

        Hairline {
            width: parent.width
        }

        Item {
            width: 1
            height: Theme.sizes.near
        }

        ValueRow {
            width: parent.width
            isSmall: true
            label: qsTr("Projected")
            value: column.pace.projected
            isWarning: column.pace.isProjectedOver
        }

        ValueRow {
            width: parent.width
            isSmall: true
            label: qsTr("Resets")
            value: column.pace.resets
        }
    }
}
