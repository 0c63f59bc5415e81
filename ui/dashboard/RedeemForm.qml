import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// Asks what a redeemed reset covers, and then once more. Escape closes it.
FocusScope {
    id: form

    required property PlanEditor editor
    property bool isSure: false
    signal closed

    implicitHeight: column.height
    Keys.onEscapePressed: closed()

    function begin() {
        isSure = false;
        scope.current = Scope.All;
        scope.forceActiveFocus();
    }

    function ask() {
        isSure = true;
        confirm.forceActiveFocus();
    }

    Column {
        id: column

        width: parent.width
        spacing: Theme.sizes.gap

        DetailLabel {
            text: qsTr("After redeeming in Claude's Settings → Usage → Resets: Vorn takes the drop at face value instead of treating it as a stale reading.")
            Accessible.ignored: false
        }

        ScopeChoice {
            id: scope

            width: parent.width
            visible: !form.isSure
            options: form.editor.scopes
            Keys.onReturnPressed: form.ask()
            Keys.onEnterPressed: form.ask()
        }

        Label {
            width: parent.width
            visible: form.isSure
            medium: true
            wrapMode: Text.Wrap
            text: qsTr("Redeemed for: %1. Take one off your banked resets?").arg(form.editor.scopes[scope.current] ?? "")
        }

        Item {
            width: parent.width
            height: Theme.sizes.control

            TextButton {
                anchors.right: form.isSure ? confirm.left : next.left
                anchors.rightMargin: Theme.sizes.gap
                text: qsTr("Cancel")
                onTriggered: form.closed()
            }

            TextButton {
                id: next

                anchors.right: parent.right
                visible: !form.isSure
                primary: true
                text: qsTr("Continue")
                onTriggered: form.ask()
            }

            TextButton {
                id: confirm

                anchors.right: parent.right
                visible: form.isSure
                primary: true
                text: qsTr("Yes, redeemed")
                onTriggered: {
                    form.editor.redeem(scope.current);
                    form.closed();
                }
            }
        }
    }
}
