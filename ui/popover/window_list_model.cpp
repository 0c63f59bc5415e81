#include "ui/popover/window_list_model.hpp"

#include <utility>

#include "core/analysis/answer.hpp"

namespace vorn {
namespace {

/// Of more windows, only the one that the head speaks of is shown in full.
constexpr std::size_t kMostOpen = 4;

}  // namespace

int WindowListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant WindowListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const auto& [card, isFoldable] = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
        case Card:
            return QVariant::fromValue(card);
        case Foldable:
            return isFoldable;
        default:
            return {};
    }
}

QHash<int, QByteArray> WindowListModel::roleNames() const {
    return {{Card, "card"}, {Foldable, "foldable"}};
}

void WindowListModel::setRows(std::vector<Row> rows) {
    std::size_t at = 0;
    for (Row& row : rows) {
        while (at < m_rows.size() && m_rows[at].card.kind < row.card.kind) {
            beginRemoveRows({}, static_cast<int>(at), static_cast<int>(at));
            m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(at));
            endRemoveRows();
        }
        if (at == m_rows.size() || m_rows[at].card.kind != row.card.kind) {
            beginInsertRows({}, static_cast<int>(at), static_cast<int>(at));
            m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(at), std::move(row));
            endInsertRows();
        } else if (m_rows[at] != row) {
            m_rows[at] = std::move(row);
            emit dataChanged(index(static_cast<int>(at)), index(static_cast<int>(at)));
        }
        ++at;
    }
    if (at < m_rows.size()) {
        beginRemoveRows({}, static_cast<int>(at), rowCount({}) - 1);
        m_rows.resize(at);
        endRemoveRows();
    }
}

std::vector<WindowListModel::Row> windowRows(const Answer& answer) {
    const bool areMany = answer.cards.size() > kMostOpen;
    std::vector<WindowListModel::Row> rows;
    rows.reserve(answer.cards.size());
    for (const Answer::Card& card : answer.cards) {
        rows.push_back({.card = windowCardContent(card.assessment, answer.isJudged, answer.now),
                        .isFoldable = areMany && &card.assessment != answer.headAssessment()});
    }
    return rows;
}

}  // namespace vorn
