#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include "platform/wake_signal.hpp"

namespace vorn {

/// What logind tells on the system bus; silent where there is none.
class LogindWakeSignal final : public WakeSignal {
    Q_OBJECT

public:
    explicit LogindWakeSignal(const QDBusConnection& bus);

private slots:
    void onPrepareForSleep(bool isGoingToSleep, const QDBusMessage& signal);

private:
    QDBusConnection m_bus;
};

}  // namespace vorn
