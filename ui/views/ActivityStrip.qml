import QtQuick
import Vorn

/// How token use was spread over a day or a week. Only the shape matters; hovering and the arrow keys read out.
Card {
    id: strip

    required property ActivityPresenter presenter
    property int marked: -1
    readonly property bool hasBars: presenter.nothing === ""

    implicitHeight: content.height + 2 * Theme.sizes.inset
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Activity")
    onVisibleChanged: presenter.isShown = visible
    Component.onCompleted: presenter.isShown = visible

    Column {
        id: content

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
                text: strip.marked >= 0 ? strip.presenter.describe(strip.marked) : strip.presenter.lastReply
            }

            Segments {
                id: span

                anchors.right: parent.right
                name: qsTr("Time shown")
                options: [qsTr("24 h"), qsTr("7 d")]
                current: strip.presenter.span
                onPicked: index => {
                    strip.marked = -1;
                    strip.presenter.span = index;
                }
            }
        }

        DetailLabel {
            visible: !strip.hasBars
            text: strip.presenter.nothing
            Accessible.ignored: false
        }

        // Time runs from left to right in every language.
        Item {
            id: field

            LayoutMirroring.enabled: false
            LayoutMirroring.childrenInherit: true
            width: parent.width
            height: bars.height + marks.height
            visible: strip.hasBars
            activeFocusOnTab: true
            Accessible.role: Accessible.Chart
            Accessible.name: qsTr("Activity over time")
            Accessible.description: strip.marked >= 0 ? strip.presenter.describe(strip.marked) : strip.presenter.summary
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
                bars: strip.presenter.bars
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

            Item {
                id: marks

                /// Every how many of them there is room for, by the widest.
                readonly property int step: {
                    const all = strip.presenter.marks;
                    let widest = 1;
                    for (let i = 0; i < all.length; ++i) {
                        widest = Math.max(widest, metrics.advanceWidth(all[i].text) + Theme.sizes.gap);
                    }
                    const apart = all.length > 1 ? (all[1].position - all[0].position) * width : width;
                    return Math.max(1, Math.ceil(widest / Math.max(1, apart)));
                }

                function widthOf(index: int): real {
                    return metrics.advanceWidth(strip.presenter.marks[index]?.text ?? "");
                }
                function centreOf(index: int): real {
                    return Math.round((strip.presenter.marks[index]?.position ?? 0) * width);
                }
                /// Within the strip, at its ends too.
                function leftOf(index: int): real {
                    return Math.max(0, Math.min(centreOf(index) - widthOf(index) / 2, width - widthOf(index)));
                }
                /// Not where it is so near an end that it would be pushed against its neighbour.
                function hasText(index: int): bool {
                    const natural = centreOf(index) - widthOf(index) / 2;
                    const left = leftOf(index);
                    const before = index - step;
                    const after = index + step;
                    return !(left < natural && before >= 0 && leftOf(before) + widthOf(before) + Theme.sizes.gap > left) && !(left > natural && after < strip.presenter.marks.length && left + widthOf(index) + Theme.sizes.gap > leftOf(after));
                }

                y: bars.height + Theme.sizes.near
                width: parent.width
                height: Theme.sizes.caption + Theme.sizes.gap

                FontMetrics {
                    id: metrics

                    font.pixelSize: Theme.sizes.caption
                }

                Repeater {
                    model: strip.presenter.marks

                    delegate: Item {
                        id: mark

                        required property int index
                        required property var modelData

                        x: marks.centreOf(index)
                        visible: index % marks.step === 0

                        Rectangle {
                            y: -Theme.sizes.near
                            width: Theme.sizes.hair
                            height: Theme.sizes.near
                            color: Theme.colors.fieldLine
                        }

                        Label {
                            visible: marks.hasText(mark.index)
                            x: marks.leftOf(mark.index) - mark.x
                            font.pixelSize: Theme.sizes.caption
                            color: Theme.colors.secondText
                            text: mark.modelData.text
                            Accessible.ignored: true
                        }
                    }
                }
            }

            FocusRing {
                distance: Theme.sizes.near
            }
        }
    }
}
