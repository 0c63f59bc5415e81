import QtQuick
import Vorn.Charts
import Vorn.Controls

/// Where a chart draws its lines: the part of it between its labels, and which moment and percentage lies where in the
/// chart. Time runs from left to right everywhere.
Item {
    id: plot

    required property LimitPanelPresenter panel

    readonly property limitChart content: panel.chart
    readonly property limitChartMarks marks: panel.marks
    // Apart from the content, of which something changes with every moment.
    readonly property real span: content.span
    readonly property real highest: content.top
    readonly property real evenPaceTo: content.evenPaceEnd
    readonly property bool isEmpty: span <= 0
    readonly property color statusColor: Theme.colors.status(panel.card.status)
    readonly property size pixels: Qt.size(width, height)
    readonly property real rightEdge: x + width
    readonly property real bottomEdge: y + height
    readonly property point now: placeOf(Qt.point(content.now, content.used))

    function xOf(time: real): real {
        return x + time / Math.max(span, 1) * width;
    }
    function yOf(percent: real): real {
        return bottomEdge - percent / highest * height;
    }
    /// To a quarter of a pixel: what moves by less is not drawn anew.
    function placeOf(point: point): point {
        return Qt.point(Math.round(4 * xOf(point.x)) / 4, Math.round(4 * yOf(point.y)) / 4);
    }
    function timeAt(x: real): real {
        return Math.min(1, Math.max(0, (x - plot.x) / width)) * span;
    }
}
