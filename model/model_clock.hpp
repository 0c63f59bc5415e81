#pragma once

#include <QTimer>
#include <functional>
#include <memory>

#include "core/support/time.hpp"

namespace vorn {

/// The model's time, so that a test can live through a day in a moment.
class ModelClock {
public:
    virtual ~ModelClock() = default;
    [[nodiscard]] virtual Instant now() const = 0;
};

/// Calls back regularly on the main thread. Not by the wall clock: setting that does not move the next call.
class Ticker {
public:
    virtual ~Ticker() = default;
    /// Calls `onTick` every `interval`, the first time after one. Ends a previous run.
    virtual void start(Seconds interval, std::function<void()> onTick) = 0;
    virtual void stop() = 0;
};

std::unique_ptr<ModelClock> makeSystemClock();
/// A ticker that listens to `timer` and sets its interval. Others may listen to it as well, so that a program that is
/// idle wakes once for all of them: stopping ends only this one's calls. `timer` must outlive it.
std::unique_ptr<Ticker> makeTimerTicker(QTimer& timer);

}  // namespace vorn
