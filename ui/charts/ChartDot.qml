import QtQuick

Rectangle {
    required property point centre
    required property real diameter

    x: centre.x - diameter / 2
    y: centre.y - diameter / 2
    width: diameter
    height: diameter
    radius: diameter / 2
}
