import QtQuick
import Vorn.Charts
import Vorn.Controls

/// How fast a window was used over one stretch of time.
Item {
    id: row

    required property paceRow reading
    // Alike in all rows.
    required property real barStart
    required property real barWidth
    required property real factorWidth

    Accessible.role: Accessible.StaticText
    Accessible.name: reading.label + ", " + (reading.rate === "" ? reading.reason : reading.rate + ", " + reading.factor)

    Label {
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        font.pixelSize: Theme.sizes.caption
        color: Theme.colors.secondText
        text: row.reading.label
        Accessible.ignored: true
    }

    PaceBar {
        anchors.left: parent.left
        anchors.leftMargin: row.barStart
        anchors.verticalCenter: parent.verticalCenter
        width: row.barWidth
        value: row.reading.bar
    }

    Label {
        anchors.right: factor.left
        anchors.rightMargin: Theme.sizes.gap
        anchors.verticalCenter: parent.verticalCenter
        font.pixelSize: Theme.sizes.caption
        text: row.reading.rate
        Accessible.ignored: true
    }

    Label {
        id: factor

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: Math.max(implicitWidth, row.factorWidth)
        horizontalAlignment: Text.AlignRight
        font.pixelSize: Theme.sizes.caption
        medium: true
        color: row.reading.isTooFast ? Theme.colors.status(Status.AtRisk) : row.reading.rate === "" ? Theme.colors.secondText : Theme.colors.text
        text: row.reading.factor
        Accessible.ignored: true
    }

    HoverHandler {
        id: hover
    }

    Hint {
        text: row.reading.reason
        wanted: hover.hovered
    }
}
