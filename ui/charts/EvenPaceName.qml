import QtQuick
import Vorn.Charts
import Vorn.Controls

/// Names the diagonal of a chart, where neither the readings nor the moment cross the name; nowhere else.
ChartLabel {
    id: name

    required property ChartPlot plot
    readonly property var place: plot.evenPaceTo > 0 ? freePlace() : null

    /// Beside the diagonal; null where there is no such place.
    function freePlace(): var {
        for (const share of [0.3, 0.45, 0.6, 0.75, 0.9]) {
            const on = Qt.point(plot.xOf(share * plot.evenPaceTo), plot.yOf(share * 100));
            for (const at of [Qt.point(on.x - implicitWidth - Theme.sizes.near, on.y - implicitHeight), Qt.point(on.x + Theme.sizes.near, on.y)]) {
                if (isFree(at)) {
                    return at;
                }
            }
        }
        return null;
    }
    function isFree(at: point): bool {
        const end = at.x + implicitWidth;
        if (at.x < plot.x || end > plot.rightEdge || (plot.now.x > at.x - Theme.sizes.near && plot.now.x < end + Theme.sizes.near)) {
            return false;
        }
        for (let i = 0; i <= 4; ++i) {
            const value = plot.panel.valueAt(plot.timeAt(at.x + i / 4 * implicitWidth));
            const line = plot.yOf(value);
            if (value >= 0 && line > at.y - Theme.sizes.near && line < at.y + implicitHeight + Theme.sizes.near) {
                return false;
            }
        }
        return true;
    }

    visible: place !== null
    x: place ? place.x : 0
    y: place ? place.y : 0
    color: Theme.colors.thirdText
    text: qsTr("even pace")
}
