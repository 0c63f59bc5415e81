import QtQuick

/// A coloured band at the top or bottom of something rounded: round at that end only.
Item {
    id: band

    property alias radius: fill.radius
    property alias color: fill.color
    property bool atBottom: false

    clip: true

    Rectangle {
        id: fill

        y: band.atBottom ? -radius : 0
        width: parent.width
        height: parent.height + radius
    }
}
