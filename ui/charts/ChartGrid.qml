import QtQuick
import Vorn.Charts
import Vorn.Controls

/// What lies under the lines of a chart: the field above the limit, and the grid with its percentages.
Item {
    id: grid

    required property ChartPlot plot
    readonly property real labelWidth: widestPercent.width

    TextMetrics {
        id: widestPercent

        font.pixelSize: Theme.sizes.caption
        text: "100%"
    }

    // Above the limit.
    Rectangle {
        x: grid.plot.x
        y: grid.plot.y
        width: grid.plot.width
        height: grid.plot.yOf(100) - y
        visible: height > 0
        color: Theme.colors.status(Status.Limited)
        opacity: Theme.highContrast ? 0 : 0.07
    }

    Repeater {
        model: grid.plot.marks.ticks

        ChartMoment {
            required property real modelData

            plot: grid.plot
            at: plot.xOf(modelData)
            color: Theme.colors.grid
        }
    }

    Repeater {
        model: grid.plot.isEmpty ? [0] : [0, 50]

        Rectangle {
            required property int modelData

            x: grid.plot.x
            y: Math.round(grid.plot.yOf(modelData))
            width: grid.plot.width
            height: Theme.sizes.hair
            color: Theme.colors.grid
        }
    }

    Repeater {
        model: [0, 50, 100]

        ChartLabel {
            required property int modelData

            x: grid.labelWidth - width
            y: grid.plot.yOf(modelData) - height / 2
            text: modelData === 100 ? "100%" : modelData
        }
    }
}
