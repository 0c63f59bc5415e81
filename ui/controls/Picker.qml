import QtQuick
import Vorn.Controls

/// One of several short texts. The arrow keys choose at once; the list opens on a click or on Space.
Item {
    id: picker

    required property string name
    required property list<string> options
    required property int current
    readonly property bool isOpen: choices.visible
    signal picked(int index)

    implicitWidth: widest.width + chevron.width + Theme.sizes.gap + 2 * Theme.sizes.between
    implicitHeight: Theme.sizes.control
    activeFocusOnTab: true
    Accessible.role: Accessible.ComboBox
    Accessible.name: name + ", " + value.text
    Accessible.focusable: true
    Accessible.onPressAction: toggle()
    Keys.onPressed: event => event.accepted = press(event.key)
    onActiveFocusChanged: choices.visible = false

    function toggle() {
        choices.marked = current;
        choices.place();
        choices.visible = !choices.visible;
    }

    function pick(index: int) {
        choices.visible = false;
        picked(index);
    }

    function step(by: int) {
        const next = Math.max(0, Math.min((isOpen ? choices.marked : current) + by, options.length - 1));
        if (isOpen) {
            choices.marked = next;
        } else if (next !== current) {
            picked(next);
        }
    }

    function press(key: int): bool {
        switch (key) {
        case Qt.Key_Up:
            step(-1);
            return true;
        case Qt.Key_Down:
            step(1);
            return true;
        case Qt.Key_Home:
            step(-options.length);
            return true;
        case Qt.Key_End:
            step(options.length);
            return true;
        case Qt.Key_Space:
        case Qt.Key_Return:
        case Qt.Key_Enter:
            isOpen ? pick(choices.marked) : toggle();
            return true;
        case Qt.Key_Escape:
            const wasOpen = isOpen;
            choices.visible = false;
            return wasOpen;
        }
        return false;
    }

    FieldFrame {}

    PressArea {
        onTriggered: {
            picker.forceActiveFocus();
            picker.toggle();
        }
    }

    Label {
        id: value

        anchors.left: parent.left
        anchors.leftMargin: Theme.sizes.between
        anchors.verticalCenter: parent.verticalCenter
        text: picker.options[picker.current] ?? ""
        Accessible.ignored: true
    }

    Icon {
        id: chevron

        anchors.right: parent.right
        anchors.rightMargin: Theme.sizes.gap
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.sizes.title
        height: width
        symbol: Icon.ChevronDown
        color: Theme.colors.secondText
    }

    // As wide as the longest of them, so that choosing moves nothing.
    Column {
        id: widest

        visible: false

        Repeater {
            model: picker.options

            delegate: Label {
                required property string modelData

                text: modelData
            }
        }
    }

    PickerList {
        id: choices

        picker: picker
        options: picker.options
        current: picker.current
        onPicked: index => picker.pick(index)
    }

    FocusRing {}
}
