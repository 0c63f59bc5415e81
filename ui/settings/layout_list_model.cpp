#include "ui/settings/layout_list_model.hpp"

#include <algorithm>

#include "model/preferences/preferences.hpp"

namespace vorn {
namespace {

void moveEntry(MenuBarLayout& layout, int from, int to) {
    const auto begin = layout.begin();
    if (from < to) {
        std::rotate(begin + from, begin + from + 1, begin + to + 1);
    } else {
        std::rotate(begin + to, begin + from, begin + from + 1);
    }
}

}  // namespace

LayoutListModel::LayoutListModel(Preferences& preferences, QObject* parent)
    : QAbstractListModel(parent), m_preferences(preferences), m_rows(preferences.menuBarLayout()) {
    connect(&preferences, &Preferences::menuBarLayoutChanged, this, &LayoutListModel::update);
}

int LayoutListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant LayoutListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const MenuBarEntry& entry = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
        case Label:
            return QString::fromUtf8(vorn::label(entry.item));
        case IsOn:
            return entry.isOn;
        default:
            return {};
    }
}

QHash<int, QByteArray> LayoutListModel::roleNames() const {
    return {{Label, "label"}, {IsOn, "isOn"}};
}

bool LayoutListModel::isRow(int row) const {
    return row >= 0 && row < static_cast<int>(m_rows.size());
}

void LayoutListModel::setOn(int row, bool on) {
    if (isRow(row)) {
        MenuBarLayout layout = m_rows;
        layout[static_cast<std::size_t>(row)].isOn = on;
        m_preferences.setMenuBarLayout(std::move(layout));
    }
}

void LayoutListModel::step(int row, int offset) {
    if (isRow(row)) {
        m_preferences.moveMenuBarItem(m_rows[static_cast<std::size_t>(row)].item, offset);
    }
}

void LayoutListModel::move(int from, int to) {
    if (isRow(from) && isRow(to) && from != to) {
        MenuBarLayout layout = m_rows;
        moveEntry(layout, from, to);
        m_preferences.setMenuBarLayout(std::move(layout));
    }
}

/// Turns the rows into what the preferences hold by moving rows, so that the view's rows and the focus go with them.
void LayoutListModel::update() {
    const MenuBarLayout& wanted = m_preferences.menuBarLayout();
    int first = 0;
    int last = rowCount({}) - 1;
    const auto isPlaced = [&](int row) {
        const auto i = static_cast<std::size_t>(row);
        return m_rows[i].item == wanted[i].item;
    };
    while (first < last && isPlaced(first)) {
        ++first;
    }
    while (last > first && isPlaced(last)) {
        --last;
    }
    // One row that went down is moved itself, not all those that made room for it.
    if (first < last && m_rows[static_cast<std::size_t>(first)].item == wanted[static_cast<std::size_t>(last)].item) {
        moveRow(first, last);
    }
    for (int row = first; row < last; ++row) {
        const auto found = std::ranges::find(m_rows, wanted[static_cast<std::size_t>(row)].item, &MenuBarEntry::item);
        moveRow(static_cast<int>(found - m_rows.begin()), row);
    }
    for (int row = 0; row < rowCount({}); ++row) {
        auto& entry = m_rows[static_cast<std::size_t>(row)];
        if (std::exchange(entry, wanted[static_cast<std::size_t>(row)]).isOn != entry.isOn) {
            emit dataChanged(index(row), index(row), {IsOn});
        }
    }
}

void LayoutListModel::moveRow(int from, int to) {
    if (from != to) {
        beginMoveRows({}, from, from, {}, from < to ? to + 1 : to);
        moveEntry(m_rows, from, to);
        endMoveRows();
    }
}

}  // namespace vorn
