import QtQuick
import Vorn.Controls
import Vorn.Window

/// What fills a window: closes it on Escape and is laid out in the direction that the user reads in.
FocusScope {
    required property AppRequests requests
    required property string name

    focus: true
    LayoutMirroring.enabled: Theme.mirrored
    LayoutMirroring.childrenInherit: true
    Accessible.role: Accessible.Pane
    Accessible.name: name
    Keys.onEscapePressed: Window.window.close()
}
