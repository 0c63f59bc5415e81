import QtQuick
import Vorn.Charts
import Vorn.Controls

/// Where a chart's lines are and where they lead: now, the crossing of the limit, and the end of the projection.
Item {
    id: outlook

    required property ChartPlot plot
    readonly property limitChart content: plot.content
    readonly property point horizon: plot.placeOf(content.projectionEnd)
    readonly property point crossing: plot.placeOf(Qt.point(content.crossing, 100))

    ChartDot {
        visible: outlook.content.isProjected && !outlook.content.isBeyondTop
        centre: outlook.horizon
        diameter: 6
        color: outlook.plot.statusColor
    }

    ChartDot {
        visible: outlook.content.crossing >= 0
        centre: outlook.crossing
        diameter: 10
        color: Theme.colors.surface
        border.color: outlook.plot.statusColor
        border.width: 2
    }

    ChartLabel {
        readonly property real before: outlook.crossing.x - implicitWidth - Theme.sizes.gap
        readonly property real after: outlook.crossing.x + Theme.sizes.gap
        /// Between the moment and the crossing; else beyond it, under the line that goes on.
        readonly property bool isBefore: before > outlook.plot.now.x + Theme.sizes.near || after + implicitWidth > outlook.plot.rightEdge

        visible: outlook.content.crossing >= 0
        x: isBefore ? Math.max(outlook.plot.x + Theme.sizes.tight, before) : after
        y: outlook.crossing.y + (isBefore ? -height - Theme.sizes.tight : Theme.sizes.tight)
        semibold: true
        color: outlook.plot.statusColor
        text: outlook.content.crossingText
    }

    Label {
        readonly property bool isInside: outlook.plot.rightEdge - outlook.horizon.x > implicitWidth + 2 * Theme.sizes.gap

        visible: outlook.content.isProjected
        x: (isInside ? outlook.horizon.x : outlook.plot.rightEdge) + Theme.sizes.gap
        y: Math.max(outlook.plot.y - height / 4, Math.min(outlook.horizon.y - height / 2, outlook.plot.bottomEdge - height))
        semibold: true
        color: outlook.plot.statusColor
        text: outlook.content.projectionText
        Accessible.ignored: true
    }

    ChartDot {
        visible: !outlook.plot.isEmpty
        centre: outlook.plot.now
        diameter: 9
        color: Theme.colors.accent
        border.color: Theme.colors.surface
        border.width: 2
    }
}
