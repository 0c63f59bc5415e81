#include "platform/linux/logind_wake_signal.hpp"

#include "platform/linux/bus_call.hpp"

namespace vorn {

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
    const auto compare = [this, sender = signal.service()](const QDBusPendingReply<QString>& owner) {
        if (!owner.isError() && owner.value() == sender) {
            emit woke();
        }
    };
    ask<QString>(m_bus, busCall("GetNameOwner", {"org.freedesktop.login1"}), this, compare);
}

}  // namespace vorn
