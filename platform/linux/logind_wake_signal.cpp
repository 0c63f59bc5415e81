#include "platform/linux/logind_wake_signal.hpp"

#include <QDBusPendingReply>

namespace vorn {

namespace {
constexpr auto kService = "org.freedesktop.login1";
constexpr auto kBus = "org.freedesktop.DBus";
}  // namespace

std::unique_ptr<WakeSignal> WakeSignal::system() {
    return std::make_unique<LogindWakeSignal>(QDBusConnection::systemBus());
}

LogindWakeSignal::LogindWakeSignal(const QDBusConnection& bus) : m_bus(bus) {
    // From any sender: naming the service would have Qt wait for the bus to say who that is.
    m_bus.connect({}, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep", this,
                  SLOT(onPrepareForSleep(bool, QDBusMessage)));
}

/// Sent twice: before the machine sleeps, and when it is awake again. On the system bus other users' programs can send
/// it as well.
void LogindWakeSignal::onPrepareForSleep(bool isGoingToSleep, const QDBusMessage& signal) {
    if (isGoingToSleep) {
        return;
    }
    auto question = QDBusMessage::createMethodCall(kBus, "/org/freedesktop/DBus", kBus, "GetNameOwner");
    auto* call = new QDBusPendingCallWatcher(m_bus.asyncCall(question << kService), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, sender = signal.service()] {
        call->deleteLater();
        const QDBusPendingReply<QString> owner = *call;
        if (!owner.isError() && owner.value() == sender) {
            emit woke();
        }
    });
}

}  // namespace vorn
