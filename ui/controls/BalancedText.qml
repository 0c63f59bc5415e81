import QtQuick
import Vorn.Controls

/// Text that, where it needs a second line, breaks in its middle, so that no single word hangs.
Item {
    id: balanced

    property alias text: label.text
    property alias font: label.font
    property alias semibold: label.semibold
    property alias color: label.color
    property alias maximumLineCount: label.maximumLineCount
    property bool centered: false

    implicitHeight: label.height

    /// The least that holds it in two lines. No line begins with a dash.
    function widthInTwoLines(text: string): real {
        const words = text.split(" ");
        let least = Infinity;
        for (let i = 1; i < words.length && !text.includes("\n"); ++i) {
            if (words[i] === "—") {
                continue;
            }
            const first = metrics.advanceWidth(words.slice(0, i).join(" "));
            const second = metrics.advanceWidth(words.slice(i).join(" "));
            least = Math.min(least, Math.max(first, second));
        }
        // Text is laid out a little wider than it measures where its glyphs sit on whole pixels.
        return Math.ceil(least + label.font.pixelSize / 2);
    }

    Label {
        id: label

        readonly property real half: balanced.widthInTwoLines(text)
        readonly property bool needsTwoLines: metrics.advanceWidth(text) > balanced.width && half < balanced.width

        anchors.left: balanced.centered ? undefined : parent.left
        anchors.horizontalCenter: balanced.centered ? parent.horizontalCenter : undefined
        horizontalAlignment: balanced.centered ? Text.AlignHCenter : Text.AlignLeft
        width: needsTwoLines ? half : balanced.width
        wrapMode: Text.Wrap
        maximumLineCount: 3
        elide: Text.ElideRight
        Accessible.ignored: true
    }

    FontMetrics {
        id: metrics

        font: label.font
    }
}
