#include "ui/views/limit_panel_model.hpp"

#include <QQmlEngine>
#include <algorithm>

#include "app/model/usage_model.hpp"

namespace vorn {

LimitPanelModel::LimitPanelModel(UsageModel& model, QObject* parent) : QAbstractListModel(parent), m_model(model) {
    connect(&model, &UsageModel::changed, this, &LimitPanelModel::update);
    update();
}

int LimitPanelModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_panels.size());
}

QVariant LimitPanelModel::data(const QModelIndex& index, int) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    return QVariant::fromValue(m_panels[static_cast<std::size_t>(index.row())].get());
}

QHash<int, QByteArray> LimitPanelModel::roleNames() const {
    return {{Qt::UserRole, "panel"}};
}

void LimitPanelModel::update() {
    removeGone();
    int row = 0;
    for (const WindowAssessment& assessment : m_model.assessments()) {
        setPanel(row++, limitPanelContent(m_model, assessment));
    }
}

void LimitPanelModel::removeGone() {
    const auto isThere = [this](const WindowKind& kind) {
        return std::ranges::any_of(m_model.assessments(), [&](const auto& each) { return each.window.kind == kind; });
    };
    for (int row = rowCount({}) - 1; row >= 0; --row) {
        if (!isThere(panel(row).card().kind)) {
            beginRemoveRows({}, row, row);
            m_panels.erase(m_panels.begin() + row);
            endRemoveRows();
        }
    }
}

void LimitPanelModel::setPanel(int row, LimitPanelContent content) {
    // Both are ordered by kind, and nothing is here that is not there: what differs is new.
    if (row < rowCount({}) && panel(row).card().kind == content.card.kind) {
        m_panels[static_cast<std::size_t>(row)]->setContent(std::move(content));
        return;
    }
    beginInsertRows({}, row, row);
    auto made = std::make_unique<LimitPanelPresenter>(std::move(content));
    QQmlEngine::setObjectOwnership(made.get(), QQmlEngine::CppOwnership);
    m_panels.insert(m_panels.begin() + row, std::move(made));
    endInsertRows();
}

}  // namespace vorn
