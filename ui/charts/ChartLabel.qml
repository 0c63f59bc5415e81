import QtQuick
import Vorn.Controls

/// Small text in a chart, whose description says it all.
Label {
    font.pixelSize: Theme.sizes.caption
    color: Theme.colors.secondText
    Accessible.ignored: true
}
