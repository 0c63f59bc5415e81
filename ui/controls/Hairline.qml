import QtQuick
import Vorn.Controls

Rectangle {
    implicitHeight: Theme.sizes.hair
    color: Theme.colors.line
}
