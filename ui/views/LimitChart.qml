import QtQuick
import QtCharts
import Vorn

/// The chart of one limit, from the window's beginning to its reset. It knows nothing of limits: it draws the series it
/// is handed. Time runs from left to right everywhere.
Item {
    id: chart

    required property LimitPanelPresenter panel
    property bool namesEvenPace: false
    /// Device pixels a point where the window does not know of them, as in a picture.
    property real pixelRatio: 1

    readonly property limitChart content: panel.chart
    readonly property limitChartMarks marks: panel.marks
    // Apart from the content, of which something changes with every moment.
    readonly property real span: content.span
    readonly property real highest: content.top
    readonly property real evenPaceTo: content.evenPaceEnd
    readonly property bool isEmpty: span <= 0
    readonly property color statusColor: Theme.colors.status(panel.status)
    readonly property size pixels: Qt.size(plot.width, plot.height)
    readonly property point now: placeOf(Qt.point(content.now, content.used))
    readonly property point horizon: placeOf(content.projectionEnd)
    /// Where the reader is; negative while nobody reads.
    property real cursor: -1
    property real evenPaceEnd: evenPaceTo
    /// What series may reach beyond the plot, so that lines on its edges keep their whole width.
    readonly property int margin: Theme.sizes.near

    function xOf(time: real): real {
        return plot.x + time / Math.max(span, 1) * plot.width;
    }
    function yOf(percent: real): real {
        return plot.y + plot.height - percent / highest * plot.height;
    }
    /// To a quarter of a pixel: what moves by less is not drawn anew.
    function placeOf(point: point): point {
        return Qt.point(Math.round(4 * xOf(point.x)) / 4, Math.round(4 * yOf(point.y)) / 4);
    }
    function timeAt(x: real): real {
        return Math.min(1, Math.max(0, (x - plot.x) / plot.width)) * span;
    }
    function readAt(time: real) {
        cursor = isEmpty || panel.valueAt(time) < 0 ? -1 : time;
    }
    function step(by: real) {
        const from = cursor < 0 ? content.now : cursor;
        const to = Math.min(span, Math.max(0, from + by * span));
        if (panel.valueAt(to) >= 0) {
            cursor = to;
        }
    }
    function fill() {
        lines.show(isEmpty ? 0 : panel.runCount());
        SeriesPoints.put(areaTop, panel.area(pixels));
        SeriesPoints.join(areaBase, Qt.point(0, 0), Qt.point(span, 0));
        SeriesPoints.put(projection, panel.projection(pixels));
    }

    LayoutMirroring.enabled: false
    LayoutMirroring.childrenInherit: true
    activeFocusOnTab: true
    Accessible.role: Accessible.Chart
    Accessible.name: cursor >= 0 ? panel.readout(cursor) : qsTr("%1, chart").arg(panel.title)
    Accessible.description: content.summary
    Keys.onLeftPressed: step(-1 / 60)
    Keys.onRightPressed: step(1 / 60)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home || event.key === Qt.Key_End) {
            readAt(event.key === Qt.Key_Home ? span / 60 : content.now);
            event.accepted = true;
        }
    }
    onActiveFocusChanged: if (!activeFocus) {
        cursor = -1;
    }
    onContentChanged: refill.start()
    onPixelsChanged: refill.start()
    onEvenPaceEndChanged: evenPace.update()
    Component.onCompleted: {
        fill();
        evenPace.update();
    }

    Behavior on evenPaceEnd {
        NumberAnimation {
            duration: Theme.barDuration
            easing.type: Easing.OutCubic
        }
    }

    // Sizes and contents change several times before a frame.
    Timer {
        id: refill

        interval: 0
        onTriggered: chart.fill()
    }

    Item {
        id: plot

        x: percents.width + Theme.sizes.gap
        y: nowLabel.height + Theme.sizes.tight
        width: parent.width - x - endLabelWidth.width - Theme.sizes.gap
        height: parent.height - y - times.height - Theme.sizes.near
    }

    TextMetrics {
        id: endLabelWidth

        font.pixelSize: Theme.sizes.body
        font.weight: Font.DemiBold
        text: "100%"
    }

    // Above the limit.
    Rectangle {
        x: plot.x
        y: plot.y
        width: plot.width
        height: chart.yOf(100) - plot.y
        visible: height > 0
        color: Theme.colors.status(Status.Limited)
        opacity: Theme.highContrast ? 0 : 0.07
    }

    Repeater {
        model: chart.marks.ticks

        Rectangle {
            required property real modelData

            x: Math.round(chart.xOf(modelData))
            y: plot.y
            width: Theme.sizes.hair
            height: plot.height
            color: Theme.colors.grid
        }
    }

    Repeater {
        model: chart.isEmpty ? [0] : [0, 50]

        Rectangle {
            required property int modelData

            x: plot.x
            y: Math.round(chart.yOf(modelData))
            width: plot.width
            height: Theme.sizes.hair
            color: Theme.colors.grid
        }
    }

    Item {
        id: percents

        width: widestPercent.width

        TextMetrics {
            id: widestPercent

            font.pixelSize: Theme.sizes.caption
            text: "100%"
        }

        Repeater {
            model: [0, 50, 100]

            Label {
                required property int modelData

                x: percents.width - width
                y: chart.yOf(modelData) - height / 2
                font.pixelSize: Theme.sizes.caption
                color: Theme.colors.secondText
                text: modelData === 100 ? "100%" : modelData
                Accessible.ignored: true
            }
        }
    }

    ChartView {
        id: view

        width: parent.width * chart.pixelRatio
        height: parent.height * chart.pixelRatio
        scale: 1 / chart.pixelRatio
        transformOrigin: Item.TopLeft
        enabled: false
        visible: !chart.isEmpty
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
        plotArea: Qt.rect((plot.x - chart.margin) * chart.pixelRatio, (plot.y - chart.margin) * chart.pixelRatio, (plot.width + 2 * chart.margin) * chart.pixelRatio, (plot.height + 2 * chart.margin) * chart.pixelRatio)

        ValueAxis {
            id: timeAxis

            readonly property real overhang: chart.margin / Math.max(plot.width, 1) * Math.max(chart.span, 1)

            visible: false
            min: -overhang
            max: Math.max(chart.span, 1) + overhang
        }

        ValueAxis {
            id: percentAxis

            readonly property real overhang: chart.margin / Math.max(plot.height, 1) * chart.highest

            visible: false
            min: -overhang
            max: chart.highest + overhang
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

            function update() {
                if (chart.evenPaceEnd > 0) {
                    SeriesPoints.join(evenPace, Qt.point(0, 0), Qt.point(chart.evenPaceEnd, 100));
                } else {
                    SeriesPoints.clear(evenPace);
                }
            }

            axisX: timeAxis
            axisY: percentAxis
            color: Theme.colors.thirdText
            width: 1.25 * chart.pixelRatio
            style: Qt.DotLine
        }

        LineSeries {
            id: projection

            axisX: timeAxis
            axisY: percentAxis
            color: chart.statusColor
            width: 2 * chart.pixelRatio
            style: Qt.DashLine
        }
    }

    QtObject {
        id: lines

        property var series: []

        function show(count: int) {
            while (series.length < count) {
                const line = view.createSeries(ChartView.SeriesTypeLine, "", timeAxis, percentAxis);
                line.color = Qt.binding(() => Theme.colors.accent);
                line.width = Qt.binding(() => 2 * chart.pixelRatio);
                series.push(line);
            }
            for (let run = 0; run < series.length; ++run) {
                SeriesPoints.put(series[run], chart.panel.line(run, chart.pixels));
            }
        }
    }

    // The limit.
    Rectangle {
        x: plot.x
        y: Math.round(chart.yOf(100))
        width: plot.width
        height: Theme.sizes.hair
        color: Theme.colors.secondText
    }

    // Early resets that happened.
    Repeater {
        model: chart.marks.epochs

        Rectangle {
            required property real modelData

            x: Math.round(chart.xOf(modelData))
            y: plot.y
            width: Theme.sizes.hair
            height: plot.height
            color: Theme.colors.accent
        }
    }

    // What comes after a planned reset is another window's.
    Rectangle {
        readonly property real from: chart.xOf(Math.max(0, chart.evenPaceTo)) + 1

        visible: chart.content.isCutShort
        x: from
        y: plot.y
        width: Math.max(0, plot.x + plot.width - from)
        height: plot.height + 1
        color: Theme.colors.surface
        opacity: 0.6
    }

    // Now.
    Rectangle {
        visible: !chart.isEmpty
        x: Math.round(chart.now.x)
        y: plot.y
        width: Theme.sizes.hair
        height: plot.height
        color: Theme.colors.thirdText
    }

    Label {
        id: nowLabel

        visible: !chart.isEmpty
        x: Math.max(plot.x, Math.min(chart.now.x - width / 2, plot.x + plot.width - width))
        font.pixelSize: Theme.sizes.caption
        color: Theme.colors.secondText
        text: qsTr("now")
        Accessible.ignored: true
    }

    Repeater {
        model: chart.marks.flags

        Item {
            id: flag

            required property real modelData

            x: Math.round(chart.xOf(modelData))
            y: plot.y - pennant.height

            Rectangle {
                y: pennant.height / 2
                x: -width / 2
                width: 2
                height: plot.height + pennant.height / 2
                color: Theme.colors.accent
            }

            Icon {
                id: pennant

                x: -Math.round(width * 0.2)
                width: Theme.sizes.small + Theme.sizes.tight
                height: width
                symbol: Icon.Flag
                color: Theme.colors.accent
            }
        }
    }

    Label {
        id: evenPaceName

        readonly property var place: chart.namesEvenPace && chart.evenPaceTo > 0 ? freePlace() : null

        /// Beside the diagonal, where neither the readings nor the moment cross it; null where there is no such place.
        function freePlace(): var {
            for (const share of [0.3, 0.45, 0.6, 0.75, 0.9]) {
                const at = share * chart.evenPaceTo;
                for (const isAbove of [true, false]) {
                    const x = isAbove ? chart.xOf(at) - implicitWidth - Theme.sizes.near : chart.xOf(at) + Theme.sizes.near;
                    const y = chart.yOf(share * 100) + (isAbove ? -implicitHeight : 0);
                    if (isFree(x, y)) {
                        return Qt.point(x, y);
                    }
                }
            }
            return null;
        }
        function isFree(x: real, y: real): bool {
            const now = chart.now.x;
            if (x < plot.x || x + implicitWidth > plot.x + plot.width || (now > x - Theme.sizes.near && now < x + implicitWidth + Theme.sizes.near)) {
                return false;
            }
            for (let i = 0; i <= 4; ++i) {
                const value = chart.panel.valueAt(chart.timeAt(x + i / 4 * implicitWidth));
                const line = chart.yOf(value);
                if (value >= 0 && line > y - Theme.sizes.near && line < y + implicitHeight + Theme.sizes.near) {
                    return false;
                }
            }
            return true;
        }

        visible: place !== null
        x: place ? place.x : 0
        y: place ? place.y : 0
        font.pixelSize: Theme.sizes.caption
        color: Theme.colors.thirdText
        text: qsTr("even pace")
        Accessible.ignored: true
    }

    ChartDot {
        visible: chart.content.isProjected && !chart.content.isBeyondTop
        centre: chart.horizon
        diameter: 6
        color: chart.statusColor
    }

    ChartDot {
        visible: chart.content.crossing >= 0
        centre: chart.placeOf(Qt.point(chart.content.crossing, 100))
        diameter: 10
        color: Theme.colors.surface
        border.color: chart.statusColor
        border.width: 2
    }

    Label {
        id: crossingLabel

        readonly property real ring: chart.placeOf(Qt.point(chart.content.crossing, 100)).x

        visible: chart.content.crossing >= 0
        readonly property real before: ring - implicitWidth - Theme.sizes.gap
        /// Between the moment and the crossing; else beyond it, under the line that goes on.
        readonly property bool fitsBefore: before > chart.now.x + Theme.sizes.near
        readonly property bool fitsAfter: ring + Theme.sizes.gap + implicitWidth <= plot.x + plot.width

        x: fitsBefore || !fitsAfter ? Math.max(plot.x + Theme.sizes.tight, before) : ring + Theme.sizes.gap
        y: fitsBefore || !fitsAfter ? chart.yOf(100) - height - Theme.sizes.tight : chart.yOf(100) + Theme.sizes.tight
        font.pixelSize: Theme.sizes.caption
        semibold: true
        color: chart.statusColor
        text: chart.content.crossingText
        Accessible.ignored: true
    }

    Label {
        readonly property real end: chart.horizon.x
        readonly property bool isInside: plot.x + plot.width - end > implicitWidth + 2 * Theme.sizes.gap

        visible: chart.content.isProjected
        x: isInside ? end + Theme.sizes.gap : plot.x + plot.width + Theme.sizes.gap
        y: Math.max(plot.y - height / 4, Math.min(chart.horizon.y - height / 2, plot.y + plot.height - height))
        semibold: true
        color: chart.statusColor
        text: chart.content.projectionText
        Accessible.ignored: true
    }

    ChartDot {
        visible: !chart.isEmpty
        centre: chart.now
        diameter: 9
        color: Theme.colors.accent
        border.color: Theme.colors.surface
        border.width: 2
    }

    Item {
        id: times

        readonly property int keep: every(plot.width)

        /// Labels at the first and last mark stay within the plot.
        function leftOf(index: int, width: real): real {
            const centred = chart.xOf(chart.marks.ticks[index]) - width / 2;
            return Math.max(plot.x - Theme.sizes.tight, Math.min(centred, plot.x + plot.width - width));
        }
        /// Each how manyth label is shown, so that none touch.
        function every(room: real): int {
            const texts = chart.marks.tickTexts;
            for (let step = 1; step < texts.length; step *= 2) {
                let end = -Infinity;
                let fits = true;
                for (let i = 0; i < texts.length && fits; i += step) {
                    const width = timeMetrics.advanceWidth(texts[i]);
                    fits = leftOf(i, width) >= end;
                    end = leftOf(i, width) + width + Theme.sizes.gap;
                }
                if (fits) {
                    return step;
                }
            }
            return Math.max(1, texts.length);
        }

        y: parent.height - height
        height: timeMetrics.height

        FontMetrics {
            id: timeMetrics

            font.pixelSize: Theme.sizes.caption
        }

        Repeater {
            model: chart.marks.tickTexts

            Label {
                required property int index
                required property string modelData

                visible: index % times.keep === 0
                x: times.leftOf(index, implicitWidth)
                font.pixelSize: Theme.sizes.caption
                color: Theme.colors.secondText
                text: modelData
                Accessible.ignored: true
            }
        }
    }

    Label {
        visible: chart.isEmpty
        x: plot.x + (plot.width - width) / 2
        y: plot.y + (plot.height - height) / 2
        width: Math.min(implicitWidth, plot.width)
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
        color: Theme.colors.secondText
        text: chart.content.emptyText
        Accessible.ignored: true
    }

    // What the reader is at.
    Item {
        visible: chart.cursor >= 0

        Rectangle {
            x: Math.round(chart.xOf(chart.cursor))
            y: plot.y
            width: Theme.sizes.hair
            height: plot.height
            color: Theme.colors.text
        }

        ChartDot {
            centre: Qt.point(chart.xOf(chart.cursor), chart.yOf(chart.panel.valueAt(chart.cursor)))
            diameter: 9
            color: Theme.colors.surface
            border.color: chart.cursor > chart.content.now ? chart.statusColor : Theme.colors.accent
            border.width: 2
        }

        Rectangle {
            id: readout

            readonly property real at: chart.xOf(chart.cursor)
            readonly property bool fitsLeft: at - width - Theme.sizes.gap >= plot.x

            x: fitsLeft ? at - width - Theme.sizes.gap : at + Theme.sizes.gap
            y: plot.y + Theme.sizes.gap
            width: readoutText.implicitWidth + 2 * Theme.sizes.gap
            height: readoutText.implicitHeight + Theme.sizes.gap
            radius: Theme.sizes.controlRadius
            color: Theme.colors.text

            Label {
                id: readoutText

                anchors.centerIn: parent
                font.pixelSize: Theme.sizes.small
                medium: true
                color: Theme.colors.surface
                text: chart.cursor >= 0 ? chart.panel.readout(chart.cursor) : ""
                Accessible.ignored: true
            }
        }
    }

    // On top, since the chart library's own item takes the pointer for itself.
    Item {
        anchors.fill: parent

        HoverHandler {
            onPointChanged: if (hovered) {
                chart.readAt(chart.timeAt(point.position.x));
            }
            onHoveredChanged: if (!hovered) {
                chart.cursor = -1;
            }
        }
    }

    FocusRing {
        distance: Theme.sizes.near
    }
}
