#include "model/model_clock.hpp"

#include <QObject>
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
    explicit TimerTicker(QTimer& timer) : m_timer(timer) { m_timer.setTimerType(Qt::PreciseTimer); }
    ~TimerTicker() override { TimerTicker::stop(); }
    TimerTicker(const TimerTicker&) = delete;
    TimerTicker& operator=(const TimerTicker&) = delete;

    void start(Seconds interval, std::function<void()> onTick) override {
        stop();
        m_calls = QObject::connect(&m_timer, &QTimer::timeout, &m_timer, std::move(onTick));
        m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(interval));
    }
    void stop() override { QObject::disconnect(m_calls); }

private:
    QTimer& m_timer;
    QMetaObject::Connection m_calls;
};

}  // namespace

std::unique_ptr<ModelClock> makeSystemClock() {
    return std::make_unique<SystemClock>();
}

std::unique_ptr<Ticker> makeTimerTicker(QTimer& timer) {
    return std::make_unique<TimerTicker>(timer);
}

}  // namespace vorn
