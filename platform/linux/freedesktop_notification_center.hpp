#pragma once

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QHash>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/notification_center.hpp"

namespace vorn {

/// The notification server of a desktop, `org.freedesktop.Notifications` on its session bus. Servers come, go and are
/// exchanged while the desktop runs; one that the bus starts on demand counts as there.
class FreedesktopNotificationCenter final : public NotificationCenter {
    Q_OBJECT

public:
    struct Patience {
        std::chrono::milliseconds answer{10'000};   ///< Until a server counts as one that does not answer.
        std::chrono::milliseconds nextTry{60'000};  ///< Until such a server is asked again.
    };
    explicit FreedesktopNotificationCenter(const QDBusConnection& bus)
        : FreedesktopNotificationCenter(bus, Patience()) {}
    FreedesktopNotificationCenter(const QDBusConnection& bus, Patience patience);

    void requestAuthorization(std::function<void(bool granted)> onAnswer) override;
    void post(const Notice& notice) override;
    [[nodiscard]] QString problem() const override;

private slots:
    void onOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
    void onActionInvoked(uint serverId, const QString& action);
    void onDisconnected();

private:
    enum class Server : std::uint8_t { asked, usable, silent, absent, withoutBus };
    /// What the server was told about one identifier of ours.
    struct Posted {
        uint serverId = 0;  ///< 0: none, or one of a server that has gone.
        bool isUnderWay = false;
        std::optional<Notice> next{};  ///< To replace the one under way.
    };

    void askServer();
    void onCapabilities();
    void onServerGone();
    void setServer(Server server);
    void callNotify(const Notice& notice);
    void onNotified(const QString& id, const QDBusPendingReply<uint>& reply);
    [[nodiscard]] QVariantList notifyArguments(const Notice& notice) const;

    QDBusConnection m_bus;
    Patience m_patience;
    Server m_server = Server::asked;
    QString m_owner;  ///< The bus name of the server's connection; empty while it is not known.
    QStringList m_capabilities;
    std::unique_ptr<QDBusPendingCallWatcher> m_question;  ///< About the server; a new one supersedes the old.
    QTimer m_retry;
    /// By our identifier. Kept when closed: servers let people click in their history.
    QHash<QString, Posted> m_posted;
    std::vector<std::function<void(bool)>> m_onAnswers;
    std::optional<bool> m_granted;  ///< The last answer given.
};

}  // namespace vorn
