#include "platform/linux/logind_wake_signal.hpp"

namespace vorn {

std::unique_ptr<WakeSignal> WakeSignal::system() {
    return std::make_unique<LogindWakeSignal>(QDBusConnection::systemBus());
}

LogindWakeSignal::LogindWakeSignal(QDBusConnection bus) {
    bus.connect("org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                "PrepareForSleep", this, SLOT(onPrepareForSleep(bool)));
}

/// Sent twice: before the machine sleeps, and when it is awake again.
void LogindWakeSignal::onPrepareForSleep(bool isGoingToSleep) {
    if (!isGoingToSleep) {
        emit woke();
    }
}

}  // namespace vorn
