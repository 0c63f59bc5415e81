#pragma once

#include <iosfwd>
#include <optional>
#include <span>

#include "core/data/activity/activity_summary.hpp"
#include "core/data/history_sample.hpp"
#include "core/data/rhythm.hpp"
#include "core/data/usage_window.hpp"
#include "core/support/zone_offsets.hpp"

namespace vorn {

/// Where a window will stand at its reset, and how likely its limit is reached before: what somebody with these habits
/// will do, as opposed to what the present pace leads to.
struct Forecast {
    double pHit = 0;  ///< Probability, 0..1, that the limit is reached before the reset.
    /// Percentiles of the used percent at the reset, were there no limit: ascending, not below what is used, above 100
    /// where it comes to that.
    double p10 = 0;
    double p50 = 0;
    double p90 = 0;
    std::optional<Instant> hitAt;  ///< When the limit is reached, if it is: its median. Only with a `pHit` of a half.
    double weeksLearnt = 0;        ///< How much of the person's own rhythm this rests on.
    bool operator==(const Forecast&) const = default;
};

namespace VornEngine {

struct ForecastInput {
    /// The readings of the last days of all windows, in order of time.
    std::span<const HistorySample> history;
    const ActivitySummary* activity = nullptr;  ///< Null when local activity is switched off.
    const Rhythm& rhythm;                       ///< After `learn` with the same history, activity and `now`.
    const ZoneOffsets& zone;                    ///< Of the last nine weeks and up to the reset.
    Instant now;
};

/// The forecast for one window; empty unless its reset is known and lies after `now` and its reading is finite. A limit
/// that is reached is certain. Deterministic: what lies after `now` has no influence.
std::optional<Forecast> forecast(const UsageWindow& window, const ForecastInput& input);

}  // namespace VornEngine

/// For test failures.
void PrintTo(const Forecast& forecast, std::ostream* out);

}  // namespace vorn
