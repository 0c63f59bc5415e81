#pragma once

#include <QAbstractListModel>

#include <QtQml/qqmlregistration.h>

#include "model/preferences/menu_bar_layout.hpp"

namespace vorn {

class Preferences;

/// The nine things the tray can show, ticked and in the user's order. Rows stay what they are when they move.
class LayoutListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")

public:
    enum Role : int { Label = Qt::UserRole, IsOn };

    /// `preferences` must outlive it.
    explicit LayoutListModel(Preferences& preferences, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Rows that do not exist change nothing.
    Q_INVOKABLE void setOn(int row, bool on);
    /// One place up or down.
    Q_INVOKABLE void step(int row, int offset);
    /// Puts a row where another one is, which makes room.
    Q_INVOKABLE void move(int from, int to);

private:
    void update();
    void moveRow(int from, int to);
    [[nodiscard]] bool isRow(int row) const;

    Preferences& m_preferences;
    MenuBarLayout m_rows;
};

}  // namespace vorn
