import QtQuick
import Vorn.Controls

/// Turns while figures are being fetched; where nothing is to move, it shows dots instead.
IconButton {
    id: button

    property bool busy: false

    name: busy ? qsTr("Refreshing…") : qsTr("Refresh")
    symbol: busy && !Theme.moves ? Icon.Ellipsis : Icon.Refresh

    RotationAnimation on iconRotation {
        running: button.busy && Theme.moves
        from: 0
        to: 360
        duration: Theme.turnDuration
        loops: Animation.Infinite
        alwaysRunToEnd: true
    }
}
