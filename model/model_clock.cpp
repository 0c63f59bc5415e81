#include "model/model_clock.hpp"

#include <QObject>
#include <QTimer>
#include <utility>

namespace vorn {
namespace {

class SystemClock : public ModelClock {
public:
    [[nodiscard]] Instant now() const override { return systemNow(); }
};

/// Qt's timers follow the monotonic clock.
class TimerTicker : public Ticker {
public:
    TimerTicker() { m_timer.setTimerType(Qt::PreciseTimer); }

    void start(Seconds interval, std::function<void()> onTick) override {
        m_timer.disconnect();
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, std::move(onTick));
        m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(interval));
    }
    void stop() override { m_timer.stop(); }

private:
    QTimer m_timer;
};

}  // namespace

std::unique_ptr<ModelClock> makeSystemClock() {
    return std::make_unique<SystemClock>();
}

std::unique_ptr<Ticker> makeTimerTicker() {
    return std::make_unique<TimerTicker>();
}

}  // namespace vorn
