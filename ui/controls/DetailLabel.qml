import QtQuick
import Vorn.Controls

Label {
    width: parent.width
    color: Theme.colors.secondText
    font.pixelSize: Theme.sizes.small
    wrapMode: Text.Wrap
    Accessible.ignored: true
}
