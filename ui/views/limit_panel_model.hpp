#pragma once

#include <QAbstractListModel>
#include <memory>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/views/limit_panel.hpp"

namespace vorn {

class UsageModel;

/// One panel a window, in the order of the model's assessments. A panel stays the same while its window exists.
class LimitPanelModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")

public:
    /// `model` must outlive it.
    explicit LimitPanelModel(UsageModel& model, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
    /// The row's `LimitPanelPresenter`, whatever the role; it belongs to this model.
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    [[nodiscard]] const LimitPanelPresenter& panel(int row) const { return *m_panels[static_cast<std::size_t>(row)]; }

private:
    void update();
    void removeGone();
    void setPanel(int row, LimitPanelContent content);

    UsageModel& m_model;
    std::vector<std::unique_ptr<LimitPanelPresenter>> m_panels;
};

}  // namespace vorn
