import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// Resets ahead of schedule: those expected, and those held. Forms open within it.
Card {
    id: card

    required property DashboardPresenter presenter
    readonly property resetsContent content: presenter.resets
    readonly property PlanEditor editor: presenter.planEditor
    property bool isAdding: false
    property bool isRedeeming: false

    implicitHeight: column.height + 2 * Theme.sizes.inset
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Resets")

    Column {
        id: column

        x: Theme.sizes.inset
        y: Theme.sizes.inset
        width: parent.width - 2 * Theme.sizes.inset
        spacing: Theme.sizes.between

        Item {
            width: parent.width
            height: Theme.sizes.control

            Label {
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                semibold: true
                font.pixelSize: Theme.sizes.title
                text: qsTr("Resets")
            }

            TextButton {
                id: add

                anchors.right: parent.right
                visible: !card.isAdding
                text: qsTr("Add…")
                onTriggered: {
                    card.isRedeeming = false;
                    card.isAdding = true;
                    form.begin();
                }
            }
        }

        DetailLabel {
            visible: text !== ""
            text: card.content.nothing
            Accessible.ignored: false
        }

        Column {
            width: parent.width
            visible: card.content.rows.length > 0

            Repeater {
                model: card.content.rows

                delegate: ResetItem {
                    required property var modelData

                    width: parent ? parent.width : 0
                    reset: modelData
                    onRemoveRequested: {
                        // The row takes the keyboard with it.
                        banked.forceActiveFocus();
                        card.editor.remove(reset.id);
                    }
                }
            }
        }

        Hairline {
            width: parent.width
            visible: card.isAdding
        }

        ResetForm {
            id: form

            width: parent.width
            visible: card.isAdding
            editor: card.editor
            onClosed: {
                card.isAdding = false;
                add.forceActiveFocus();
            }
        }

        Hairline {
            width: parent.width
        }

        Item {
            width: parent.width
            height: Theme.sizes.control

            Label {
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Banked")
                Accessible.ignored: true
            }

            Stepper {
                id: banked

                anchors.right: redeem.left
                anchors.rightMargin: Theme.sizes.gap
                name: qsTr("Banked resets")
                value: card.content.banked
                onPicked: value => card.editor.setBanked(value)
            }

            TextButton {
                id: redeem

                anchors.right: parent.right
                enabled: card.content.banked > 0 && !card.isRedeeming
                text: qsTr("Redeem…")
                onTriggered: {
                    card.isAdding = false;
                    card.isRedeeming = true;
                    redeeming.begin();
                }
            }
        }

        DetailLabel {
            text: qsTr("Resets you've been given and can redeem later. Neither Claude nor Codex shares this count locally, so keep it here.")
            Accessible.ignored: false
        }

        RedeemForm {
            id: redeeming

            width: parent.width
            visible: card.isRedeeming
            editor: card.editor
            onClosed: {
                card.isRedeeming = false;
                banked.forceActiveFocus();
            }
        }
    }
}
