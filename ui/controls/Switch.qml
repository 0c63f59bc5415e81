import QtQuick
import Vorn.Controls

/// On or off. It shows what is so; who is asked to change it decides.
Pressable {
    id: control

    required property string name
    property string description
    required property bool checked
    signal toggled(bool on)

    implicitWidth: Math.round(34 * Theme.sizes.scale)
    implicitHeight: Math.round(20 * Theme.sizes.scale)
    opacity: enabled ? 1 : 0.5
    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    Accessible.description: description
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onToggleAction: triggered()
    onTriggered: toggled(!checked)

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: control.checked ? Theme.colors.accent : "transparent"
        border.color: control.checked ? Theme.colors.accent : Theme.colors.fieldLine
        border.width: Theme.sizes.hair
    }

    Rectangle {
        readonly property int distance: Math.round((parent.height - height) / 2)
        readonly property bool atRight: control.checked !== control.LayoutMirroring.enabled

        x: atRight ? parent.width - width - distance : distance
        y: distance
        width: height
        height: Math.round(parent.height * 0.7)
        radius: height / 2
        color: control.checked ? Theme.colors.textOnAccent : Theme.colors.fieldLine

        Behavior on x {
            NumberAnimation {
                duration: Theme.openDuration
            }
        }
    }

    PressArea {
        radius: height / 2
        onTriggered: control.triggered()
    }

    FocusRing {
        radius: height / 2
    }
}
