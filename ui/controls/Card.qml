import QtQuick
import Vorn.Controls

/// What belongs together in the dashboard, on a surface of its own.
Rectangle {
    color: Theme.colors.surface
    radius: Theme.sizes.cardRadius
    border.color: Theme.colors.line
    border.width: Theme.sizes.hair
}
