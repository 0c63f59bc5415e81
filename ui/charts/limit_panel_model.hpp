#pragma once

#include <QAbstractListModel>
#include <memory>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/charts/limit_panel.hpp"

namespace vorn {

/// One panel a window, in the order of the answer's cards. A panel stays the same while its window exists.
class LimitPanelModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")

public:
    using QAbstractListModel::QAbstractListModel;

    void show(const Answer& answer);

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
    /// The row's `LimitPanelPresenter`, whatever the role; it belongs to this model.
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    [[nodiscard]] const LimitPanelPresenter& panel(int row) const { return *m_panels[static_cast<std::size_t>(row)]; }

private:
    void removeGone(const Answer& answer);
    void setPanel(int row, LimitPanelContent content);

    std::vector<std::unique_ptr<LimitPanelPresenter>> m_panels;
};

}  // namespace vorn
