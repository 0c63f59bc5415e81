import QtQuick
import Vorn.Controls

/// One thing the tray can show: ticked or not, and moved by dragging, by its arrows or by Alt and an arrow key.
Item {
    id: row

    required property int index
    required property string label
    required property bool isOn
    required property int count
    signal tickRequested(bool on)
    signal stepRequested(int by)
    signal moveRequested(int to)

    z: area.isDragging ? 1 : 0
    onActiveFocusChanged: {
        if (activeFocus) {
            ListView.view.currentIndex = index;
        }
    }
    Accessible.role: Accessible.CheckBox
    Accessible.name: label
    Accessible.description: qsTr("Place %1 of %2").arg(index + 1).arg(count)
    Accessible.checkable: true
    Accessible.checked: isOn
    Accessible.onPressAction: tickRequested(!isOn)
    Accessible.onToggleAction: tickRequested(!isOn)
    Keys.onSpacePressed: tickRequested(!isOn)
    Keys.onReturnPressed: tickRequested(!isOn)
    Keys.onEnterPressed: tickRequested(!isOn)
    Keys.onPressed: event => {
        const by = event.key === Qt.Key_Up ? -1 : event.key === Qt.Key_Down ? 1 : 0;
        const to = index + by;
        event.accepted = by !== 0 && to >= 0 && to < count;
        if (event.accepted && (event.modifiers & Qt.AltModifier)) {
            stepRequested(by);
        } else if (event.accepted) {
            ListView.view.currentIndex = to;
        }
    }

    Rectangle {
        id: body

        // While it is dragged it stays under the mouse, wherever its place is.
        y: area.isDragging ? area.pointer - area.grab - row.y : 0
        width: parent.width
        height: parent.height
        radius: area.isDragging || row.activeFocus ? Theme.sizes.controlRadius : 0
        color: area.isDragging ? Theme.colors.window : "transparent"
        border.color: Theme.colors.fieldLine
        border.width: area.isDragging ? Theme.sizes.hair : 0

        MouseArea {
            id: area

            property bool isDragging: false
            property real grab: 0
            property real pointer: 0

            anchors.fill: parent
            hoverEnabled: true
            preventStealing: true
            cursorShape: isDragging ? Qt.ClosedHandCursor : Qt.ArrowCursor
            onPressed: mouse => {
                grab = mouse.y;
                row.forceActiveFocus();
            }
            onPositionChanged: mouse => {
                if (!pressed) {
                    return;
                }
                const at = mapToItem(row.parent, mouse.x, mouse.y).y;
                if (isDragging || Math.abs(mouse.y - grab) >= Theme.sizes.near) {
                    pointer = Math.max(grab, Math.min(at, (row.count - 1) * row.height + grab));
                    isDragging = true;
                    const to = Math.max(0, Math.min(Math.floor(at / row.height), row.count - 1));
                    if (to !== row.index) {
                        row.moveRequested(to);
                    }
                }
            }
            onReleased: {
                if (!isDragging) {
                    row.tickRequested(!row.isOn);
                }
                isDragging = false;
            }
            onCanceled: isDragging = false
        }

        Rectangle {
            anchors.fill: parent
            visible: area.containsMouse && !area.isDragging
            color: Theme.colors.hover
        }

        Hairline {
            width: parent.width
            visible: row.index > 0 && !area.isDragging
        }

        Icon {
            id: grip

            anchors.left: parent.left
            anchors.leftMargin: Theme.sizes.gap
            anchors.verticalCenter: parent.verticalCenter
            width: Theme.sizes.icon
            height: width
            symbol: Icon.Grip
            color: Theme.colors.thirdText
        }

        CheckBox {
            id: box

            anchors.left: grip.right
            anchors.leftMargin: Theme.sizes.near
            anchors.verticalCenter: parent.verticalCenter
            checked: row.isOn
        }

        Label {
            anchors.left: box.right
            anchors.leftMargin: Theme.sizes.gap
            anchors.right: up.left
            anchors.rightMargin: Theme.sizes.gap
            anchors.verticalCenter: parent.verticalCenter
            elide: Text.ElideRight
            color: row.isOn ? Theme.colors.text : Theme.colors.secondText
            text: row.label
            Accessible.ignored: true
        }

        IconButton {
            id: up

            anchors.right: down.left
            anchors.verticalCenter: parent.verticalCenter
            implicitWidth: Theme.sizes.edge
            implicitHeight: Theme.sizes.edge
            activeFocusOnTab: false
            enabled: row.index > 0
            name: qsTr("Move %1 up").arg(row.label)
            symbol: Icon.ChevronUp
            onTriggered: row.stepRequested(-1)
        }

        IconButton {
            id: down

            anchors.right: parent.right
            anchors.rightMargin: Theme.sizes.gap
            anchors.verticalCenter: parent.verticalCenter
            implicitWidth: Theme.sizes.edge
            implicitHeight: Theme.sizes.edge
            activeFocusOnTab: false
            enabled: row.index < row.count - 1
            name: qsTr("Move %1 down").arg(row.label)
            symbol: Icon.ChevronDown
            onTriggered: row.stepRequested(1)
        }
    }

    FocusRing {
        distance: 0
    }
}
