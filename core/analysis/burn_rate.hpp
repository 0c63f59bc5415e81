#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "core/data/history_sample.hpp"
#include "core/sources/activity_summary.hpp"

namespace vorn {

/// What a burn rate was formed from.
enum class RateBasis : std::uint8_t {
    localActivity,  ///< recent local token weight, calibrated against the window's own rise
    recent,         ///< least-squares slope of recent readings
    windowAverage,  ///< rise since the window or epoch began over the time since then
    none,           ///< no rate could be formed
};

const char* rawValue(RateBasis basis);

/// The part of one window instance after an early reset: readings before it no longer count.
struct WindowEpoch {
    Instant start;           ///< Time of the first reading after the fall.
    double usedPercent = 0;  ///< That reading: the baseline for rises within the epoch.
    bool operator==(const WindowEpoch&) const = default;
};

namespace VornEngine {

struct Thresholds {
    double watchProjection = 85;     ///< Percent projected at the reset from which a window is `watch`.
    Seconds minimumRecentSpan{480};  ///< The shortest stretch of recent history that may yield a `recent` rate.
    bool operator==(const Thresholds&) const = default;
};

struct BurnRate {
    std::optional<double> perHour;  ///< Percentage points per hour, never negative.
    RateBasis basis = RateBasis::none;
    bool operator==(const BurnRate&) const = default;
};

struct RatePoint {
    Instant time;
    double value = 0;  ///< used percent
};

}  // namespace VornEngine
}  // namespace vorn
