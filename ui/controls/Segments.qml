import QtQuick
import Vorn.Controls

/// A choice between a few short words, all of them in sight. The arrow keys choose.
Item {
    id: segments

    required property string name
    required property list<string> options
    required property int current
    signal picked(int index)

    implicitWidth: row.width + Theme.sizes.near
    implicitHeight: Theme.sizes.control
    activeFocusOnTab: true
    Accessible.role: Accessible.PageTabList
    Accessible.name: name + ", " + (options[current] ?? "")
    Accessible.focusable: true
    Keys.onPressed: event => event.accepted = press(event.key)

    function press(key: int): bool {
        const forward = LayoutMirroring.enabled ? Qt.Key_Left : Qt.Key_Right;
        const backward = LayoutMirroring.enabled ? Qt.Key_Right : Qt.Key_Left;
        const by = key === forward ? 1 : key === backward ? -1 : 0;
        const next = current + by;
        if (by !== 0 && next >= 0 && next < options.length) {
            picked(next);
        }
        return by !== 0;
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.sizes.controlRadius
        color: Theme.colors.sunken
        border.color: Theme.colors.line
        border.width: Theme.sizes.hair
    }

    Row {
        id: row

        x: Theme.sizes.tight
        y: Theme.sizes.tight
        height: parent.height - 2 * Theme.sizes.tight

        Repeater {
            model: segments.options

            delegate: Item {
                id: segment

                required property int index
                required property string modelData
                readonly property bool isCurrent: index === segments.current

                width: word.width + 2 * Theme.sizes.between
                height: row.height
                Accessible.role: Accessible.PageTab
                Accessible.name: modelData
                Accessible.selected: isCurrent
                Accessible.onPressAction: segments.picked(index)

                Rectangle {
                    anchors.fill: parent
                    visible: segment.isCurrent
                    radius: Theme.sizes.controlRadius - Theme.sizes.tight
                    color: Theme.colors.surface
                    border.color: Theme.colors.fieldLine
                    border.width: Theme.sizes.hair
                }

                PressArea {
                    radius: Theme.sizes.controlRadius - Theme.sizes.tight
                    onTriggered: segments.picked(segment.index)
                }

                // As wide as in the heavier face, so that choosing moves nothing.
                Label {
                    id: word

                    anchors.centerIn: parent
                    visible: false
                    semibold: true
                    font.pixelSize: Theme.sizes.small
                    text: segment.modelData
                }

                Label {
                    anchors.centerIn: parent
                    semibold: segment.isCurrent
                    font.pixelSize: Theme.sizes.small
                    color: segment.isCurrent ? Theme.colors.text : Theme.colors.secondText
                    text: segment.modelData
                    Accessible.ignored: true
                }
            }
        }
    }

    FocusRing {}
}
