import QtQuick
import Vorn.Answer
import Vorn.Controls
import Vorn.Tray

/// The answer in one sentence and one ring.
Item {
    id: head

    required property headContent content
    property int headlineSize: Theme.sizes.head
    property int ringSize: Theme.sizes.ring
    readonly property color statusColor: Theme.colors.status(content.status)

    implicitHeight: Math.max(ring.height, texts.height) + 2 * (Theme.sizes.inset + 1)
    activeFocusOnTab: true
    Accessible.role: Accessible.StaticText
    Accessible.name: content.spoken

    RingItem {
        id: ring

        anchors {
            left: parent.left
            leftMargin: Theme.sizes.inset - Theme.sizes.ringMargin
            verticalCenter: parent.verticalCenter
        }
        width: head.ringSize
        height: head.ringSize
        color: head.statusColor
        used: head.content.used
        segmented: head.content.segmented
        mark: head.content.mark
        angle: head.content.angle

        Behavior on angle {
            NumberAnimation {
                duration: Theme.tiltDuration
                easing.type: Easing.OutCubic
            }
        }
        Behavior on used {
            NumberAnimation {
                duration: Theme.barDuration
                easing.type: Easing.OutCubic
            }
        }
    }

    Column {
        id: texts

        anchors {
            left: ring.right
            leftMargin: Theme.sizes.between
            right: parent.right
            rightMargin: Theme.sizes.inset
            verticalCenter: parent.verticalCenter
        }
        spacing: Theme.sizes.tight

        BalancedText {
            width: parent.width
            semibold: true
            font.pixelSize: head.headlineSize
            // A dash does not begin a line.
            text: head.content.headline.replace(" —", "\u00a0—")
        }

        Item {
            width: parent.width
            height: reason.height
            visible: reason.text !== ""

            HoverHandler {
                id: hover
            }

            Hint {
                text: reason.truncated ? reason.text : ""
                wanted: hover.hovered || head.activeFocus
            }

            Row {
                LayoutMirroring.enabled: false
                x: head.LayoutMirroring.enabled ? parent.width - width : 0

                Label {
                    id: reason

                    width: Math.min(implicitWidth, texts.width - (factor.visible ? dot.width + factor.width : 0))
                    color: Theme.colors.secondText
                    elide: Text.ElideMiddle
                    text: head.content.reason
                    Accessible.ignored: true
                }

                Label {
                    id: dot

                    visible: factor.visible
                    color: Theme.colors.secondText
                    text: " · "
                    Accessible.ignored: true
                }

                Label {
                    id: factor

                    visible: text !== ""
                    medium: true
                    text: head.content.factor
                    Accessible.ignored: true
                }
            }
        }
    }

    FocusRing {
        distance: -2 * Theme.sizes.near
    }
}
