import QtQuick
import Vorn.Charts
import Vorn.Controls

/// The chart of one limit, from the window's beginning to its reset: layers that share one plot, the lowest first.
Item {
    id: chart

    required property LimitPanelPresenter panel
    property bool namesEvenPace: false
    /// Device pixels a point where the window does not know of them, as in a picture.
    property real pixelRatio: 1

    LayoutMirroring.enabled: false
    LayoutMirroring.childrenInherit: true
    activeFocusOnTab: true
    Accessible.role: Accessible.Chart
    Accessible.name: reader.isReading ? reader.text : qsTr("%1, chart").arg(panel.card.title)
    Accessible.description: area.content.summary
    Keys.onLeftPressed: reader.step(-1 / 60)
    Keys.onRightPressed: reader.step(1 / 60)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home || event.key === Qt.Key_End) {
            reader.readAt(event.key === Qt.Key_Home ? area.span / 60 : area.content.now);
            event.accepted = true;
        }
    }
    onActiveFocusChanged: if (!activeFocus) {
        reader.stop();
    }

    TextMetrics {
        id: endLabel

        font.pixelSize: Theme.sizes.body
        font.weight: Font.DemiBold
        text: "100%"
    }

    ChartPlot {
        id: area

        x: grid.labelWidth + Theme.sizes.gap
        y: marks.labelHeight + Theme.sizes.tight
        width: parent.width - x - endLabel.width - Theme.sizes.gap
        height: parent.height - y - times.implicitHeight - Theme.sizes.near
        panel: chart.panel
    }

    ChartGrid {
        id: grid

        plot: area
    }

    ChartSeries {
        anchors.fill: parent
        plot: area
        pixelRatio: chart.pixelRatio
    }

    ChartMarks {
        id: marks

        plot: area
    }

    Loader {
        active: chart.namesEvenPace
        sourceComponent: EvenPaceName {
            plot: area
        }
    }

    ChartOutlook {
        plot: area
    }

    TimeLabels {
        id: times

        y: parent.height - height
        texts: area.marks.tickTexts
        places: Array.from(area.marks.ticks, tick => area.xOf(tick))
        from: area.x - Theme.sizes.tight
        to: area.rightEdge
    }

    ChartLabel {
        visible: area.isEmpty
        x: area.x + (area.width - width) / 2
        y: area.y + (area.height - height) / 2
        width: Math.min(implicitWidth, area.width)
        font.pixelSize: Theme.sizes.body
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
        text: area.content.emptyText
    }

    // On top, since the chart library's own item takes the pointer for itself.
    ChartReader {
        id: reader

        anchors.fill: parent
        plot: area
    }

    FocusRing {
        distance: Theme.sizes.near
    }
}
