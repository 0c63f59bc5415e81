import QtQuick
import Vorn.Charts
import Vorn.Controls

/// The times under a chart: where they would touch, every second one is left out until none do.
Item {
    id: labels

    /// Strings in order, and where each belongs in the labels' own coordinates.
    required property var texts
    required property var places
    // What they stay between.
    required property real from
    required property real to
    /// Each how manyth is shown.
    readonly property int keep: {
        for (let step = 1; step < texts.length; step *= 2) {
            if (fits(step)) {
                return step;
            }
        }
        return Math.max(1, texts.length);
    }

    function leftOf(index: int, width: real): real {
        return Math.max(from, Math.min((places[index] ?? 0) - width / 2, to - width));
    }
    function fits(step: int): bool {
        let end = -Infinity;
        for (let i = 0; i < texts.length; i += step) {
            const width = metrics.advanceWidth(texts[i]);
            if (leftOf(i, width) < end) {
                return false;
            }
            end = leftOf(i, width) + width + Theme.sizes.gap;
        }
        return true;
    }

    implicitHeight: metrics.height

    FontMetrics {
        id: metrics

        font.pixelSize: Theme.sizes.caption
    }

    Repeater {
        model: labels.texts

        ChartLabel {
            required property int index
            required property string modelData

            visible: index % labels.keep === 0
            x: labels.leftOf(index, implicitWidth)
            text: modelData
        }
    }
}
