import QtQuick
import Vorn.Controls
import Vorn.Dashboard

/// What consumed the quota as Vorn measured it, by project and by model.
Column {
    id: measured

    required property DashboardPresenter presenter
    readonly property measuredContent content: presenter.measured
    /// Of lists beside each other.
    required property int columns

    spacing: Theme.sizes.between

    SegmentedTitle {
        width: parent.width
        text: qsTr("Local activity")
        name: text
        // In the order of Period.
        options: [qsTr("5 h"), qsTr("24 h"), qsTr("7 d")]
        current: measured.content.period
        onPicked: index => measured.presenter.chooseMeasured(index)
    }

    DetailLabel {
        visible: text !== ""
        text: measured.content.nothing
        Accessible.ignored: false
    }

    Grid {
        id: lists

        readonly property real each: (measured.width - (columns - 1) * columnSpacing) / columns

        columns: measured.columns
        columnSpacing: Theme.sizes.edge
        rowSpacing: measured.spacing

        RankedBars {
            width: lists.each
            title: qsTr("Projects")
            shares: measured.content.projects
        }

        RankedBars {
            width: lists.each
            title: qsTr("Model families")
            shares: measured.content.models
        }
    }
}
