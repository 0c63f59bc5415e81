import QtQuick
import Vorn.Answer
import Vorn.Controls
import Vorn.Popover
import Vorn.Window

/// The answer, the reasons, and what can be done: everything that the popover shows.
WindowView {
    id: popover

    required property PopoverPresenter presenter
    /// False where nothing can shine through beside the corners.
    property bool rounded: true
    /// The list scrolls rather than let the popover grow beyond it; 0: as high as it takes.
    property int maximumHeight: 0

    readonly property freshnessContent freshness: presenter.freshness
    readonly property bool isReady: freshness.stage === Stage.Ready
    readonly property int radius: rounded ? Theme.sizes.popoverRadius : 0
    readonly property int restHeight: head.height + notice.height + foot.height + 3 * Theme.sizes.hair

    name: "Vorn"
    implicitWidth: Theme.sizes.popoverWidth
    implicitHeight: isReady ? restHeight + list.height : page.implicitHeight + restHeight - head.height

    Rectangle {
        anchors.fill: parent
        radius: popover.radius
        color: Theme.colors.surface
    }

    EndBand {
        anchors.fill: head
        visible: popover.isReady
        radius: popover.radius
        color: Theme.colors.tint(popover.presenter.head.status)
    }

    SteerHead {
        id: head

        width: parent.width
        height: popover.isReady ? implicitHeight : 0
        visible: popover.isReady
        content: popover.presenter.head
    }

    StagePage {
        id: page

        width: parent.width
        height: implicitHeight
        visible: !popover.isReady
        freshness: popover.freshness
        requests: popover.requests
    }

    Hairline {
        id: underHead

        anchors.top: head.bottom
        width: parent.width
        visible: popover.isReady
    }

    WindowList {
        id: list

        readonly property int room: popover.maximumHeight - popover.restHeight

        anchors.top: underHead.bottom
        width: parent.width
        height: popover.maximumHeight > 0 ? Math.min(implicitHeight, Math.max(room, Theme.sizes.popoverWidth / 3))
                                          : implicitHeight
        visible: popover.isReady
        windows: popover.presenter.windows
        otherLimits: popover.presenter.otherLimits
    }

    EndBand {
        anchors.top: notice.top
        anchors.bottom: foot.bottom
        width: parent.width
        radius: popover.radius
        atBottom: true
        color: Theme.colors.sunken
    }

    Notice {
        id: notice

        anchors.bottom: foot.top
        width: parent.width
        height: visible ? implicitHeight : 0
        visible: popover.freshness.problem !== ""
        problem: popover.freshness.problem
        remedy: popover.freshness.remedy
        canRetry: popover.freshness.canRetry
        isBusy: popover.freshness.isAsking
        onRetryRequested: popover.requests.refresh()

        Hairline {
            width: parent.width
        }
    }

    PopoverFoot {
        id: foot

        anchors.bottom: parent.bottom
        width: parent.width
        height: implicitHeight
        freshness: popover.freshness
        requests: popover.requests

        Hairline {
            width: parent.width
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: popover.radius
        color: "transparent"
        border.color: Theme.colors.line
        border.width: Theme.sizes.hair
    }
}
