#include "platform/linux/freedesktop_notification_center.hpp"

#include <QDBusServiceWatcher>
#include <QVariantMap>
#include <utility>

#include "platform/linux/bus_call.hpp"

namespace vorn {

namespace {

// The service and its interface share one name.
constexpr auto kService = "org.freedesktop.Notifications";
constexpr auto kPath = "/org/freedesktop/Notifications";
constexpr auto kDefaultAction = "default";

QDBusMessage serverCall(const char* method) {
    return QDBusMessage::createMethodCall(kService, kPath, kService, method);
}

int milliseconds(std::chrono::milliseconds span) {
    return static_cast<int>(span.count());
}

bool isSilence(const QDBusError& error) {
    return error.type() == QDBusError::NoReply || error.type() == QDBusError::Timeout ||
           error.type() == QDBusError::TimedOut;
}

}  // namespace

std::unique_ptr<NotificationCenter> NotificationCenter::system() {
    return std::make_unique<FreedesktopNotificationCenter>(QDBusConnection::sessionBus());
}

FreedesktopNotificationCenter::FreedesktopNotificationCenter(const QDBusConnection& bus, Patience patience)
    : m_bus(bus), m_patience(patience) {
    if (!m_bus.isConnected()) {
        setServer(Server::withoutBus);
        return;
    }
    auto* watcher = new QDBusServiceWatcher(kService, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &FreedesktopNotificationCenter::onOwnerChanged);
    // From any sender: naming the service would have Qt wait for the bus to say who that is.
    m_bus.connect({}, kPath, kService, "ActionInvoked", this, SLOT(onActionInvoked(uint, QString)));
    m_bus.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", this,
                  SLOT(onDisconnected()));
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &FreedesktopNotificationCenter::askServer);
    askServer();
}

void FreedesktopNotificationCenter::requestAuthorization(std::function<void(bool granted)> onAnswer) {
    m_onAnswers.push_back(onAnswer);
    if (m_granted) {
        const auto answerLater = [this, onAnswer = std::move(onAnswer)] {
            onAnswer(*m_granted);
        };
        QMetaObject::invokeMethod(this, answerLater, Qt::QueuedConnection);
    }
}

QString FreedesktopNotificationCenter::problem() const {
    switch (m_server) {
        case Server::asked:
        case Server::usable:
            return {};
        case Server::silent:
            return QStringLiteral(
                "Notifications cannot be shown: the notification service of this desktop does not answer.");
        case Server::absent:
            return QStringLiteral("Notifications cannot be shown: no notification service is running on this desktop.");
        case Server::withoutBus:
            return QStringLiteral("Notifications cannot be shown: this session has no message bus (D-Bus).");
    }
    return {};
}

void FreedesktopNotificationCenter::setServer(Server server) {
    const QString oldProblem = problem();
    m_server = server;
    if (problem() != oldProblem) {
        emit problemChanged();
    }
    const bool isFirstQuestion = server == Server::asked && !m_granted;
    const bool granted = server == Server::usable;
    if (isFirstQuestion || m_granted == granted) {
        return;
    }
    m_granted = granted;
    for (const auto& onAnswer : std::vector(m_onAnswers)) {
        onAnswer(granted);
    }
}

/// Also starts a server that the bus starts on demand, and tells by its error that there is none.
void FreedesktopNotificationCenter::askServer() {
    m_question = std::make_unique<QDBusPendingCallWatcher>(
        m_bus.asyncCall(serverCall("GetCapabilities"), milliseconds(m_patience.answer)));
    connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, &FreedesktopNotificationCenter::onCapabilities);
}

void FreedesktopNotificationCenter::onCapabilities() {
    const QDBusPendingReply<QStringList> reply = *m_question;
    if (reply.isError() && isSilence(reply.error())) {
        m_retry.start(m_patience.nextTry);
        setServer(Server::silent);
        return;
    }
    if (reply.isError()) {
        setServer(Server::absent);
        return;
    }
    m_owner = reply.reply().service();
    m_capabilities = reply.value();
    setServer(Server::usable);
}

void FreedesktopNotificationCenter::onOwnerChanged(const QString& /*name*/, const QString& /*oldOwner*/,
                                                   const QString& newOwner) {
    m_retry.stop();
    m_owner = newOwner;
    for (Posted& posted : m_posted) {
        posted.serverId = 0;
    }
    setServer(Server::asked);
    if (newOwner.isEmpty()) {
        onServerGone();
    } else {
        askServer();
    }
}

/// A server may end when it has nothing to show, and the bus starts it again for the next notice. Asking the server
/// itself would start it at once.
void FreedesktopNotificationCenter::onServerGone() {
    m_question = std::make_unique<QDBusPendingCallWatcher>(
        m_bus.asyncCall(busCall("ListActivatableNames"), milliseconds(m_patience.answer)));
    connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        const QDBusPendingReply<QStringList> names = *call;
        const bool startsOnDemand = !names.isError() && names.value().contains(kService);
        setServer(startsOnDemand ? Server::usable : Server::absent);
    });
}

void FreedesktopNotificationCenter::onDisconnected() {
    m_retry.stop();
    m_question.reset();
    setServer(Server::withoutBus);
}

void FreedesktopNotificationCenter::post(const Notice& notice) {
    if (m_server != Server::usable) {
        return;
    }
    Posted& posted = m_posted[notice.id];
    if (posted.isUnderWay) {
        posted.next = notice;  // Only the answer tells what to replace.
        return;
    }
    callNotify(notice);
}

void FreedesktopNotificationCenter::callNotify(const Notice& notice) {
    m_posted[notice.id].isUnderWay = true;
    auto message = serverCall("Notify");
    message.setArguments(notifyArguments(notice));
    ask<uint>(
        m_bus, message, this, [this, id = notice.id](const auto& reply) { onNotified(id, reply); },
        milliseconds(m_patience.answer));
}

QVariantList FreedesktopNotificationCenter::notifyArguments(const Notice& notice) const {
    const bool readsMarkup = m_capabilities.contains("body-markup");
    const QStringList actions =
        m_capabilities.contains("actions") ? QStringList{kDefaultAction, QStringLiteral("Open Vorn")} : QStringList();
    // Desktops keep a critical notice on the screen until it is dismissed, over full-screen windows and in spite of "do
    // not disturb", and there is never anything that the user would have to do at once.
    constexpr uchar kNormal = 1;
    const QVariantMap hints{
        {"urgency", QVariant::fromValue(kNormal)},
        {"sound-name", "message"},
        {"desktop-entry", "vorn"},
    };
    constexpr int kServersChoice = -1;  // How long it stays on the screen.
    return {"Vorn",
            m_posted.value(notice.id).serverId,
            "vorn",
            notice.title,
            readsMarkup ? notice.body.toHtmlEscaped() : notice.body,
            actions,
            hints,
            kServersChoice};
}

void FreedesktopNotificationCenter::onNotified(const QString& id, const QDBusPendingReply<uint>& reply) {
    Posted& posted = m_posted[id];
    posted.isUnderWay = false;
    const auto next = std::exchange(posted.next, std::nullopt);
    if (!reply.isError() && reply.reply().service() == m_owner) {
        posted.serverId = reply.value();
    }
    if (reply.isError() && reply.error().type() == QDBusError::ServiceUnknown && m_server == Server::usable) {
        setServer(Server::absent);
    }
    if (next) {
        post(*next);
    }
}

void FreedesktopNotificationCenter::onActionInvoked(uint serverId, const QString& action) {
    if (serverId == 0 || action != kDefaultAction) {
        return;
    }
    for (auto posted = m_posted.cbegin(); posted != m_posted.cend(); ++posted) {
        if (posted->serverId == serverId) {
            emit activated(QString(posted.key()));  // A copy: the receiver may post, which moves the entries.
            return;
        }
    }
}

}  // namespace vorn
