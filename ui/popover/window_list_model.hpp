#pragma once

#include <QAbstractListModel>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/answer/window_card_content.hpp"

namespace vorn {

struct Answer;

/// One row a window, in the order of the answer's cards. A row stays the same row while its window exists.
class WindowListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")

public:
    enum Role : int { Card = Qt::UserRole, Foldable };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    struct Row {
        WindowCardContent card;
        bool isFoldable = false;  ///< Compact until it is opened: there are too many to show all of everything.
        bool operator==(const Row&) const = default;
    };
    /// `rows`: ordered by kind, each kind once. Rows that are the same window are changed in place.
    void setRows(std::vector<Row> rows);

private:
    std::vector<Row> m_rows;
};

/// A row for each card of the answer.
std::vector<WindowListModel::Row> windowRows(const Answer& answer);

}  // namespace vorn
