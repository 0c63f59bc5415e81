import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// A reset to plan. Return adds it, Escape closes the form.
FocusScope {
    id: form

    required property PlanEditor editor
    signal closed

    implicitHeight: column.height
    Keys.onEscapePressed: closed()

    /// Fills it anew and takes the keyboard.
    function begin() {
        editor.forgetProblem();
        date.text = editor.suggestedDate();
        time.text = editor.suggestedTime();
        note.text = "";
        scope.current = Scope.All;
        date.forceActiveFocus();
    }

    function submit() {
        if (editor.add(date.text, time.text, scope.current, note.text)) {
            closed();
        } else if (editor.problem.date !== "") {
            date.forceActiveFocus();
        } else {
            time.forceActiveFocus();
        }
    }

    Column {
        id: column

        width: parent.width
        spacing: Theme.sizes.gap

        DetailLabel {
            text: qsTr("When")
        }

        Item {
            width: parent.width
            height: date.height

            TextBox {
                id: date

                anchors.left: parent.left
                width: Math.round((parent.width - Theme.sizes.gap) * 0.56)
                name: qsTr("Date")
                maximumLength: 40
                problem: form.editor.problem.date
                onAccepted: form.submit()
                onEdited: form.editor.forgetProblem()
            }

            TextBox {
                id: time

                anchors.right: parent.right
                width: parent.width - date.width - Theme.sizes.gap
                name: qsTr("Time")
                maximumLength: 40
                problem: form.editor.problem.time
                onAccepted: form.submit()
                onEdited: form.editor.forgetProblem()
            }
        }

        DetailLabel {
            visible: text !== ""
            color: Theme.colors.status(Status.Limited)
            text: form.editor.problem.date !== "" ? form.editor.problem.date : form.editor.problem.time
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
            Accessible.ignored: false
        }

        DetailLabel {
            text: qsTr("Covers")
        }

        ScopeChoice {
            id: scope

            width: parent.width
            options: form.editor.scopes
            Keys.onReturnPressed: form.submit()
            Keys.onEnterPressed: form.submit()
        }

        DetailLabel {
            text: qsTr("Note")
        }

        TextBox {
            id: note

            width: parent.width
            name: qsTr("Note")
            placeholder: qsTr("optional")
            maximumLength: 200
            onAccepted: form.submit()
        }

        Item {
            width: parent.width
            height: add.height

            TextButton {
                anchors.right: add.left
                anchors.rightMargin: Theme.sizes.gap
                text: qsTr("Cancel")
                onTriggered: form.closed()
            }

            TextButton {
                id: add

                anchors.right: parent.right
                primary: true
                text: qsTr("Add reset")
                onTriggered: form.submit()
            }
        }
    }
}
