import QtQuick
import Vorn.Controls

/// One line of text to type, with what is wrong with it below.
Item {
    id: box

    required property string name
    property string placeholder: ""
    property string problem: ""
    property alias text: input.text
    property alias maximumLength: input.maximumLength
    signal accepted
    signal edited

    implicitHeight: Theme.sizes.control
    onActiveFocusChanged: {
        if (activeFocus) {
            input.forceActiveFocus();
        }
    }

    FieldFrame {
        color: Theme.colors.surface
        border.color: box.problem !== "" ? Theme.colors.status(Status.Limited) : Theme.colors.fieldLine
    }

    TextInput {
        id: input

        anchors.fill: parent
        anchors.leftMargin: Theme.sizes.gap
        anchors.rightMargin: Theme.sizes.gap
        verticalAlignment: TextInput.AlignVCenter
        horizontalAlignment: box.LayoutMirroring.enabled ? TextInput.AlignRight : TextInput.AlignLeft
        activeFocusOnTab: true
        selectByMouse: true
        clip: true
        font.pixelSize: Theme.sizes.body
        color: Theme.colors.text
        selectionColor: Theme.colors.accent
        selectedTextColor: Theme.colors.textOnAccent
        Accessible.role: Accessible.EditableText
        Accessible.name: box.name
        Accessible.description: box.problem
        onAccepted: box.accepted()
        onTextEdited: box.edited()
        onActiveFocusChanged: {
            if (activeFocus) {
                selectAll();
            } else {
                deselect();
            }
        }
    }

    Label {
        anchors.left: input.left
        anchors.verticalCenter: parent.verticalCenter
        visible: input.text === "" && input.preeditText === ""
        color: Theme.colors.thirdText
        text: box.placeholder
        Accessible.ignored: true
    }

    FocusRing {
        visible: input.activeFocus
    }
}
