import QtQuick
import Vorn.Controls
import Vorn.Settings
import Vorn.Tray

/// How rings look, side by side, and what the chosen look means.
Item {
    id: picker

    required property LiveGlyph glyph
    required property list<string> titles
    required property list<string> descriptions
    required property int current
    signal picked(int index)

    implicitHeight: choices.height + meaning.height + 3 * Theme.sizes.gap
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Style")

    Row {
        id: choices

        x: Theme.sizes.gap
        y: Theme.sizes.gap
        width: parent.width - 2 * x
        spacing: Theme.sizes.near

        Repeater {
            id: repeater

            model: picker.titles

            delegate: StyleChoice {
                required property int index
                required property string modelData

                width: (choices.width - (picker.titles.length - 1) * choices.spacing) / picker.titles.length
                glyph: picker.glyph
                style: index
                title: modelData
                description: picker.descriptions[index]
                isCurrent: index === picker.current
                onTriggered: picker.picked(index)
                onStepped: by => picker.step(index + by)
            }
        }
    }

    function step(index: int) {
        if (index >= 0 && index < titles.length) {
            picked(index);
            repeater.itemAt(index).forceActiveFocus();
        }
    }

    DetailLabel {
        id: meaning

        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.between
        y: choices.y + choices.height + Theme.sizes.gap
        width: parent.width - 2 * Theme.sizes.between
        text: picker.descriptions[picker.current] ?? ""
    }
}
