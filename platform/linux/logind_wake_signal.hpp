#pragma once

#include <QDBusConnection>

#include "platform/wake_signal.hpp"

namespace vorn {

/// What logind tells on the system bus; silent where there is none.
class LogindWakeSignal final : public WakeSignal {
    Q_OBJECT

public:
    explicit LogindWakeSignal(QDBusConnection bus);

private slots:
    void onPrepareForSleep(bool isGoingToSleep);
};

}  // namespace vorn
