import QtQuick
import QtCharts
import Vorn.Charts
import Vorn.Controls

/// The lines of a chart and the area under them. The one component that knows the chart library.
Item {
    id: lines

    required property ChartPlot plot
    /// As in `LimitChart`.
    property real pixelRatio: 1

    property real evenPaceEnd: plot.evenPaceTo
    property var runs: []
    /// What series may reach beyond the plot, so that lines on its edges keep their whole width.
    readonly property int margin: Theme.sizes.near

    function fill() {
        showRuns(plot.isEmpty ? 0 : plot.panel.runCount());
        SeriesPoints.put(areaTop, plot.panel.area(plot.pixels));
        SeriesPoints.join(areaBase, Qt.point(0, 0), Qt.point(plot.span, 0));
        SeriesPoints.put(projection, plot.panel.projection(plot.pixels));
    }
    function showRuns(count: int) {
        while (runs.length < count) {
            const line = view.createSeries(ChartView.SeriesTypeLine, "", timeAxis, percentAxis);
            line.color = Qt.binding(() => Theme.colors.accent);
            line.width = Qt.binding(() => 2 * pixelRatio);
            runs.push(line);
        }
        for (let run = 0; run < runs.length; ++run) {
            SeriesPoints.put(runs[run], plot.panel.line(run, plot.pixels));
        }
    }
    function showEvenPace() {
        if (evenPaceEnd > 0) {
            SeriesPoints.join(evenPace, Qt.point(0, 0), Qt.point(evenPaceEnd, 100));
        } else {
            SeriesPoints.clear(evenPace);
        }
    }

    onEvenPaceEndChanged: showEvenPace()
    Component.onCompleted: {
        fill();
        showEvenPace();
    }

    Behavior on evenPaceEnd {
        NumberAnimation {
            duration: Theme.barDuration
            easing.type: Easing.OutCubic
        }
    }

    Connections {
        function onContentChanged() {
            refill.start();
        }
        function onPixelsChanged() {
            refill.start();
        }

        target: lines.plot
    }

    // Sizes and contents change several times before a frame.
    Timer {
        id: refill

        interval: 0
        onTriggered: lines.fill()
    }

    ChartView {
        id: view

        width: parent.width * lines.pixelRatio
        height: parent.height * lines.pixelRatio
        scale: 1 / lines.pixelRatio
        transformOrigin: Item.TopLeft
        enabled: false
        visible: !lines.plot.isEmpty
        antialiasing: true
        animationOptions: ChartView.NoAnimation
        legend.visible: false
        backgroundColor: "transparent"
        plotAreaColor: "transparent"
        dropShadowEnabled: false
        margins {
            left: 0
            top: 0
            right: 0
            bottom: 0
        }
        plotArea: Qt.rect((lines.plot.x - lines.margin) * lines.pixelRatio, (lines.plot.y - lines.margin) * lines.pixelRatio, (lines.plot.width + 2 * lines.margin) * lines.pixelRatio, (lines.plot.height + 2 * lines.margin) * lines.pixelRatio)

        ValueAxis {
            id: timeAxis

            readonly property real end: Math.max(lines.plot.span, 1)
            readonly property real overhang: lines.margin / Math.max(lines.plot.width, 1) * end

            visible: false
            min: -overhang
            max: end + overhang
        }

        ValueAxis {
            id: percentAxis

            readonly property real overhang: lines.margin / Math.max(lines.plot.height, 1) * lines.plot.highest

            visible: false
            min: -overhang
            max: lines.plot.highest + overhang
        }

        AreaSeries {
            axisX: timeAxis
            axisY: percentAxis
            color: Theme.colors.area
            borderWidth: 0
            borderColor: "transparent"
            upperSeries: LineSeries {
                id: areaTop
            }
            lowerSeries: LineSeries {
                id: areaBase
            }
        }

        LineSeries {
            id: evenPace

            axisX: timeAxis
            axisY: percentAxis
            color: Theme.colors.thirdText
            width: 1.25 * lines.pixelRatio
            style: Qt.DotLine
        }

        LineSeries {
            id: projection

            axisX: timeAxis
            axisY: percentAxis
            color: lines.plot.statusColor
            width: 2 * lines.pixelRatio
            style: Qt.DashLine
        }
    }
}
