import QtQuick
import Vorn.Charts
import Vorn.Controls

/// Reads out a chart under the pointer and at the keyboard's mark.
Item {
    id: reader

    required property ChartPlot plot
    /// Where the reader is, in seconds since the chart begins; negative while nobody reads.
    property real cursor: -1
    readonly property bool isReading: cursor >= 0
    readonly property string text: isReading ? plot.panel.readout(cursor) : ""
    readonly property real at: plot.xOf(cursor)

    function readAt(time: real) {
        cursor = plot.isEmpty || plot.panel.valueAt(time) < 0 ? -1 : time;
    }
    /// By a share of the chart, from now at first.
    function step(by: real) {
        const from = isReading ? cursor : plot.content.now;
        const to = Math.min(plot.span, Math.max(0, from + by * plot.span));
        if (plot.panel.valueAt(to) >= 0) {
            cursor = to;
        }
    }
    function stop() {
        cursor = -1;
    }

    HoverHandler {
        onPointChanged: if (hovered) {
            reader.readAt(reader.plot.timeAt(point.position.x));
        }
        onHoveredChanged: if (!hovered) {
            reader.stop();
        }
    }

    ChartMoment {
        visible: reader.isReading
        plot: reader.plot
        at: reader.at
        color: Theme.colors.text
    }

    ChartDot {
        visible: reader.isReading
        centre: Qt.point(reader.at, reader.plot.yOf(reader.plot.panel.valueAt(reader.cursor)))
        diameter: 9
        color: Theme.colors.surface
        border.color: reader.cursor > reader.plot.content.now ? reader.plot.statusColor : Theme.colors.accent
        border.width: 2
    }

    Rectangle {
        readonly property real before: reader.at - width - Theme.sizes.gap

        visible: reader.isReading
        x: before >= reader.plot.x ? before : reader.at + Theme.sizes.gap
        y: reader.plot.y + Theme.sizes.gap
        width: words.implicitWidth + 2 * Theme.sizes.gap
        height: words.implicitHeight + Theme.sizes.gap
        radius: Theme.sizes.controlRadius
        color: Theme.colors.text

        Label {
            id: words

            anchors.centerIn: parent
            font.pixelSize: Theme.sizes.small
            medium: true
            color: Theme.colors.surface
            text: reader.text
            Accessible.ignored: true
        }
    }
}
