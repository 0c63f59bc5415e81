import QtQuick
import Vorn.Controls

/// What stands below, and which part of it; the choice is absent where there is only one.
Item {
    id: title

    required property string text
    required property string name
    required property list<string> options
    required property int current
    signal picked(int index)

    implicitHeight: Theme.sizes.control

    Label {
        id: label

        anchors.left: parent.left
        anchors.right: segments.visible ? segments.left : parent.right
        anchors.rightMargin: Theme.sizes.gap
        anchors.verticalCenter: parent.verticalCenter
        elide: Text.ElideRight
        color: Theme.colors.secondText
        text: title.text
    }

    Segments {
        id: segments

        anchors.right: parent.right
        visible: options.length > 1
        name: title.name
        options: title.options
        current: title.current
        onPicked: index => title.picked(index)
    }
}
