import QtQuick
import Vorn.Controls

/// How far from the sustainable pace, which is in the middle: slower to the near side, faster to the far one.
Item {
    id: bar

    /// -1 to 1
    required property real value
    readonly property real half: width / 2
    readonly property real length: Math.abs(value) * half

    implicitHeight: Theme.sizes.near + Theme.sizes.tight

    Rectangle {
        anchors.fill: parent
        radius: Theme.sizes.tight
        color: Theme.colors.track
    }

    Rectangle {
        x: (bar.value > 0) === !bar.LayoutMirroring.enabled ? bar.half : bar.half - width
        width: bar.length
        height: parent.height
        radius: Theme.sizes.tight / 2
        color: bar.value > 0 ? Theme.colors.status(Status.AtRisk) : Theme.colors.accent
    }
}
