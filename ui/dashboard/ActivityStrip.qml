import QtQuick
import Vorn.Charts
import Vorn.Controls
import Vorn.Dashboard

/// How token use was spread over a day or a week. Only the shape matters; hovering and the arrow keys read out.
Card {
    id: strip

    required property DashboardPresenter presenter
    readonly property activityContent content: presenter.activity
    /// What people choose between.
    readonly property list<int> periods: [Period.Day, Period.Week]
    property int marked: -1
    readonly property bool hasBars: content.nothing === ""
    readonly property string readout: marked >= 0 ? content.describe(marked) : ""

    implicitHeight: column.height + 2 * Theme.sizes.inset
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Activity")

    Column {
        id: column

        x: Theme.sizes.inset
        y: Theme.sizes.inset
        width: parent.width - 2 * Theme.sizes.inset
        spacing: Theme.sizes.gap

        Item {
            width: parent.width
            height: Theme.sizes.control

            Label {
                id: title

                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                semibold: true
                font.pixelSize: Theme.sizes.title
                text: qsTr("Activity")
            }

            Label {
                anchors.left: title.right
                anchors.leftMargin: Theme.sizes.gap
                anchors.right: span.left
                anchors.rightMargin: Theme.sizes.gap
                anchors.baseline: title.baseline
                elide: Text.ElideRight
                font.pixelSize: Theme.sizes.small
                color: Theme.colors.secondText
                text: strip.readout !== "" ? strip.readout : strip.content.lastReply
            }

            Segments {
                id: span

                anchors.right: parent.right
                name: qsTr("Time shown")
                options: [qsTr("24 h"), qsTr("7 d")]
                current: strip.content.period === Period.Week ? 1 : 0
                onPicked: index => {
                    strip.marked = -1;
                    strip.presenter.chooseActivity(strip.periods[index]);
                }
            }
        }

        DetailLabel {
            visible: !strip.hasBars
            text: strip.content.nothing
            Accessible.ignored: false
        }

        // Time runs from left to right in every language.
        Item {
            id: field

            LayoutMirroring.enabled: false
            LayoutMirroring.childrenInherit: true
            width: parent.width
            height: bars.height + Theme.sizes.near + times.height
            visible: strip.hasBars
            activeFocusOnTab: true
            Accessible.role: Accessible.Chart
            Accessible.name: qsTr("Activity over time")
            Accessible.description: strip.readout !== "" ? strip.readout : strip.content.summary
            Accessible.focusable: true
            Keys.onPressed: event => event.accepted = press(event.key)
            onActiveFocusChanged: strip.marked = -1

            function press(key: int): bool {
                const last = bars.bars.length - 1;
                switch (key) {
                case Qt.Key_Left:
                    strip.marked = strip.marked < 0 ? last : Math.max(0, strip.marked - 1);
                    return true;
                case Qt.Key_Right:
                    strip.marked = strip.marked < 0 ? last : Math.min(last, strip.marked + 1);
                    return true;
                case Qt.Key_Home:
                    strip.marked = 0;
                    return true;
                case Qt.Key_End:
                    strip.marked = last;
                    return true;
                }
                return false;
            }

            ActivityBars {
                id: bars

                width: parent.width
                height: Math.round(44 * Theme.sizes.scale)
                color: Theme.colors.accent
                lineColor: Theme.colors.line
                markColor: Theme.colors.track
                bars: strip.content.bars
                marked: strip.marked

                HoverHandler {
                    onPointChanged: {
                        if (hovered) {
                            strip.marked = Math.floor(point.position.x / bars.width * bars.bars.length);
                        }
                    }
                    onHoveredChanged: {
                        if (!hovered) {
                            strip.marked = -1;
                        }
                    }
                }
            }

            TimeLabels {
                id: times

                y: bars.height + Theme.sizes.near
                width: parent.width
                texts: strip.content.markTexts
                places: Array.from(strip.content.marks, mark => Math.round(mark * width))
                from: 0
                to: width
            }

            Repeater {
                model: times.places

                Rectangle {
                    required property int index
                    required property real modelData

                    visible: index % times.keep === 0
                    x: modelData
                    y: bars.height
                    width: Theme.sizes.hair
                    height: Theme.sizes.near
                    color: Theme.colors.fieldLine
                }
            }

            FocusRing {
                distance: Theme.sizes.near
            }
        }
    }
}
