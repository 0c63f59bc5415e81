#pragma once

#include <QAbstractListModel>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/views/window_card_content.hpp"

namespace vorn {

class UsageModel;

/// One row a window, in the order of the model's assessments. A row stays the same row while its window exists.
class WindowListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")

public:
    enum Role : int { Card = Qt::UserRole, Foldable };

    /// `model` must outlive it.
    explicit WindowListModel(UsageModel& model, QObject* parent = nullptr);

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
    void update();

    UsageModel& m_model;
    std::vector<Row> m_rows;
};

}  // namespace vorn
