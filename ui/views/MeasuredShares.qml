import QtQuick
import Vorn

/// What consumed the quota as Vorn measured it, by project and by model.
Column {
    id: measured

    required property BreakdownPresenter presenter
    /// Of lists beside each other.
    required property int columns

    spacing: Theme.sizes.between

    SegmentedTitle {
        width: parent.width
        text: qsTr("Local activity")
        name: text
        options: [qsTr("5 h"), qsTr("24 h"), qsTr("7 d")]
        current: measured.presenter.period
        onPicked: index => measured.presenter.period = index
    }

    DetailLabel {
        visible: text !== ""
        text: measured.presenter.nothingMeasured
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
            shares: measured.presenter.projects
        }

        RankedBars {
            width: lists.each
            title: qsTr("Model families")
            shares: measured.presenter.models
        }
    }
}
