import QtQuick
import Vorn.Charts
import Vorn.Controls

/// A hairline over the height of a chart.
Rectangle {
    required property ChartPlot plot
    /// In the chart.
    required property real at

    x: Math.round(at)
    y: plot.y
    width: Theme.sizes.hair
    height: plot.height
}
