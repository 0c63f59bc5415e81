import QtQuick
import Vorn

Rectangle {
    implicitHeight: Theme.sizes.hair
    color: Theme.colors.line
}
