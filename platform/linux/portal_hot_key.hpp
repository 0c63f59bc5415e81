#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QList>
#include <QTimer>
#include <QVariantMap>
#include <chrono>
#include <cstdint>
#include <utility>

#include "platform/hot_key.hpp"

namespace vorn {

/// A shortcut as the desktop portal passes it: its identifier and what is known of it.
using PortalShortcut = std::pair<QString, QVariantMap>;
using PortalShortcuts = QList<PortalShortcut>;

/// What a desktop without global shortcuts leaves to its user.
QString bindItYourself();

/// The desktop portal's global shortcuts. The desktop may ask its user first and may give other keys. A portal that
/// comes later or again is asked again, unless the user has declined.
class PortalHotKey : public HotKey {
    Q_OBJECT

public:
    /// How long the portal may take for what it does not ask its user about.
    static constexpr std::chrono::milliseconds kPatience = std::chrono::seconds{25};

    /// `bus` should be a connection that has not yet talked to the portal: it takes the program's name once only.
    explicit PortalHotKey(const QDBusConnection& bus, std::chrono::milliseconds patience = kPatience);
    ~PortalHotKey() override;

    [[nodiscard]] bool isRegistered() const override { return m_state == State::bound; }
    [[nodiscard]] QString problem() const override;
    [[nodiscard]] QString keys() const override { return m_keys; }

private slots:
    void sessionResponse(uint code, const QVariantMap& results);
    void bindResponse(uint code, const QVariantMap& results);
    void sessionClosed();
    void shortcutActivated(const QDBusObjectPath& session, const QString& id, qulonglong time,
                           const QVariantMap& options);
    void shortcutsChanged(const QDBusObjectPath& session, const vorn::PortalShortcuts& shortcuts);

private:
    enum class State : std::uint8_t { absent, creating, binding, bound, declined };

    void ownerChanged(const QString& newOwner);
    void start();
    void bind();
    void takeShortcuts(const PortalShortcuts& shortcuts);
    void enter(State state);
    QString expectResponse(const char* slot);
    void forgetResponse();
    void call(const QString& method, const QVariantList& arguments);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    std::chrono::milliseconds m_patience;
    QTimer m_overdue;
    State m_state = State::absent;
    QString m_keys;
    QString m_session;  ///< Its object path; empty while there is none.
    QString m_request;  ///< The object path whose response is awaited.
    const char* m_requestSlot = nullptr;
    quint64 m_serial = 0;  ///< Of the request; answers to earlier ones are void.
};

}  // namespace vorn
