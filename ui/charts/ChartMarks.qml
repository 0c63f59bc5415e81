import QtQuick
import Vorn.Charts
import Vorn.Controls

/// What stands over the lines of a chart: the limit, and the moments that matter.
Item {
    id: marks

    required property ChartPlot plot
    readonly property real labelHeight: nowLabel.height

    // The limit.
    Rectangle {
        x: marks.plot.x
        y: Math.round(marks.plot.yOf(100))
        width: marks.plot.width
        height: Theme.sizes.hair
        color: Theme.colors.secondText
    }

    // Early resets that happened.
    Repeater {
        model: marks.plot.marks.epochs

        ChartMoment {
            required property real modelData

            plot: marks.plot
            at: plot.xOf(modelData)
            color: Theme.colors.accent
        }
    }

    // What comes after a planned reset is another window's.
    Rectangle {
        visible: marks.plot.content.isCutShort
        x: marks.plot.xOf(Math.max(0, marks.plot.evenPaceTo)) + 1
        y: marks.plot.y
        width: Math.max(0, marks.plot.rightEdge - x)
        height: marks.plot.height + 1
        color: Theme.colors.surface
        opacity: 0.6
    }

    ChartMoment {
        visible: !marks.plot.isEmpty
        plot: marks.plot
        at: plot.now.x
        color: Theme.colors.thirdText
    }

    ChartLabel {
        id: nowLabel

        visible: !marks.plot.isEmpty
        x: Math.max(marks.plot.x, Math.min(marks.plot.now.x - width / 2, marks.plot.rightEdge - width))
        text: qsTr("now")
    }

    Repeater {
        model: marks.plot.marks.flags

        Item {
            id: flag

            required property real modelData

            x: Math.round(marks.plot.xOf(modelData))
            y: marks.plot.y - pennant.height

            Rectangle {
                y: pennant.height / 2
                x: -width / 2
                width: 2
                height: marks.plot.height + pennant.height / 2
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
}
