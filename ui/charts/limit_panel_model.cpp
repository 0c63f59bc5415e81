#include "ui/charts/limit_panel_model.hpp"

#include <QQmlEngine>

namespace vorn {

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

void LimitPanelModel::show(const Answer& answer) {
    removeGone(answer);
    int row = 0;
    for (const Answer::Card& card : answer.cards) {
        setPanel(row++, limitPanelContent(answer, card));
    }
}

void LimitPanelModel::removeGone(const Answer& answer) {
    for (int row = rowCount({}) - 1; row >= 0; --row) {
        if (answer.find(panel(row).card().kind) == nullptr) {
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
