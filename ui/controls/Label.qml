import QtQuick
import Vorn.Controls

/// Text in the system's font; `AlignLeft` so that it mirrors with the layout, whatever language it is in.
Text {
    property bool semibold: false
    property bool medium: false

    color: Theme.colors.text
    font.pixelSize: Theme.sizes.body
    font.weight: semibold ? Font.DemiBold : medium ? Font.Medium : Font.Normal
    horizontalAlignment: Text.AlignLeft
    textFormat: Text.PlainText
}
