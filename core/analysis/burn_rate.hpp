#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/analysis/matching_samples.hpp"
#include "core/data/activity/activity_summary.hpp"
#include "core/data/usage_window.hpp"

namespace vorn {

/// What a burn rate was formed from.
enum class RateBasis : std::uint8_t {
    localActivity,  ///< recent local token weight, calibrated against the window's own rise
    recent,         ///< least-squares slope of recent readings
    windowAverage,  ///< rise since the window or epoch began over the time since then
    none,           ///< no rate could be formed
};

/// "localActivity", "recent", "windowAverage", "none": the form written in JSON.
const char* rawValue(RateBasis basis);

/// At or below this many points per hour nothing is being used: a whole limit would last over a year.
inline constexpr double kNegligibleRatePerHour = 0.01;

/// The part of one window instance after an early reset: readings before it no longer count.
struct WindowEpoch {
    Instant start;           ///< Time of the first reading after the fall.
    double usedPercent = 0;  ///< What that reading said: the baseline for rises within the epoch.
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

struct BurnRateInput {
    Seconds elapsed{};  ///< Since the window began.
    /// The window's recorded readings. Must outlive the call.
    const MatchingSamples& history;
    const ActivitySummary* activity = nullptr;  ///< Null when local activity is switched off.
    Instant now;
    Thresholds thresholds{};
};

/// How fast the window is being used: by local activity (session only), else the slope of recent readings, else the
/// average since the window or its epoch began; the first that can be formed.
BurnRate burnRate(const UsageWindow& window, const BurnRateInput& input);

/// How far back the readings reach whose slope is a `recent` rate: 45 minutes for the session, a day for weeks.
Seconds recentLookBack(const WindowKind& kind);

/// The last early reset within the instance: a fall between consecutive readings by `UsageState::resetDrop` or more.
std::optional<WindowEpoch> epoch(const MatchingSamples& history);

/// Least-squares slope in points per hour, negative when falling. Of points with one time the last given counts. Empty
/// with fewer than two times or when they span less than `minimumSpan`.
std::optional<double> slopePerHour(std::vector<RatePoint> points, Seconds minimumSpan);

struct LocalRateInput {
    const ActivitySummary& activity;  ///< Must outlive the call.
    Instant now;
    std::optional<WindowEpoch> epoch;
};

/// The window's rise per unit of local token weight, applied to the weight of the last 20 minutes: points per hour, 0
/// when nothing happened lately. Empty while the window rose too little to calibrate by, or is too young.
std::optional<double> localRate(const UsageWindow& window, const LocalRateInput& input);

/// `rise` (percentage points) over `time`, never negative.
std::optional<double> averagePerHour(double rise, Seconds time);

}  // namespace VornEngine
}  // namespace vorn
