#pragma once

#include <QObject>
#include <memory>

namespace vorn {

/// Tells when the machine woke from sleep.
class WakeSignal : public QObject {
    Q_OBJECT

public:
    /// Never null; stays silent where the system does not tell.
    static std::unique_ptr<WakeSignal> system();

signals:
    void woke();
};

}  // namespace vorn
