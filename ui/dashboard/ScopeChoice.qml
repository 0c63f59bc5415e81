import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// What a reset covers. The arrow keys choose.
Item {
    id: choice

    /// In the order of Scope, as `current` is.
    required property list<string> options
    property int current: Scope.All

    implicitHeight: rows.height
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Covers") + ", " + (options[current] ?? "")
    Accessible.focusable: true
    Keys.onUpPressed: current = Math.max(0, current - 1)
    Keys.onDownPressed: current = Math.min(options.length - 1, current + 1)

    Column {
        id: rows

        width: parent.width

        Repeater {
            model: choice.options

            delegate: Item {
                id: option

                required property int index
                required property string modelData
                readonly property bool isCurrent: index === choice.current

                width: rows.width
                height: Theme.sizes.edge + Theme.sizes.tight
                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData
                Accessible.checkable: true
                Accessible.checked: isCurrent
                Accessible.onPressAction: choice.current = index

                PressArea {
                    onTriggered: choice.current = option.index
                }

                RadioMark {
                    id: mark

                    anchors.left: parent.left
                    anchors.leftMargin: Theme.sizes.near
                    anchors.verticalCenter: parent.verticalCenter
                    checked: option.isCurrent
                }

                Label {
                    anchors.left: mark.right
                    anchors.leftMargin: Theme.sizes.gap
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    elide: Text.ElideRight
                    text: option.modelData
                    Accessible.ignored: true
                }
            }
        }
    }

    FocusRing {}
}
