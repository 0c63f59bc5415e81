#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class QAction;
class QMenu;

namespace vorn {

/// One entry as hosts read it; the root holds the others.
struct TrayMenuNode {
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children;
};
QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuNode& node);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuNode& node);

struct TrayMenuProperties {
    int id = 0;
    QVariantMap properties;
};
QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuProperties& properties);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuProperties& properties);

struct TrayMenuEvent {
    int id = 0;
    QString event;
    QDBusVariant data;
    uint timestamp = 0;
};
QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuEvent& event);

/// Has tray hosts draw a menu: its entries, without submenus. What they call is named as they name things.
class TrayMenuAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    /// Belongs to the menu, which must stay as it is from when the first host sees it.
    explicit TrayMenuAdaptor(QMenu& menu);

    [[nodiscard]] uint version() const { return 3; }
    [[nodiscard]] QString status() const { return QStringLiteral("normal"); }
    [[nodiscard]] QString textDirection() const;
    [[nodiscard]] QStringList iconThemePath() const { return {}; }

public slots:
    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames, vorn::TrayMenuNode& layout);
    QList<vorn::TrayMenuProperties> GetGroupProperties(const QList<int>& ids, const QStringList& propertyNames);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    QList<int> EventGroup(const QList<vorn::TrayMenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

private:
    /// `id`: its place, from 1 on. Null when there is no such entry.
    [[nodiscard]] QAction* action(int id) const;
    [[nodiscard]] QList<TrayMenuProperties> entries() const;

    QMenu& m_menu;
};

}  // namespace vorn

Q_DECLARE_METATYPE(vorn::TrayMenuNode)
