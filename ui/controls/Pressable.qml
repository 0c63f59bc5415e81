import QtQuick

/// What does one thing: on Return, Enter and Space, and when those ask for it who do not see it. Who derives from it
/// shows it and adds the mouse.
Item {
    id: pressable

    signal triggered

    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.onPressAction: triggered()
    Keys.onReturnPressed: triggered()
    Keys.onEnterPressed: triggered()
    Keys.onSpacePressed: triggered()
}
