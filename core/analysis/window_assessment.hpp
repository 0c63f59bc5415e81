#pragma once

#include <optional>

#include "core/analysis/burn_rate.hpp"
#include "core/analysis/vorn_status.hpp"
#include "core/analysis/vorn_steer.hpp"
#include "core/data/usage_window.hpp"

namespace vorn {

/// The used percent at which a limit is reached.
inline constexpr double kLimitPercent = 100;

/// What a reading means at a given moment. Every optional is absent while the window has no future reset; a number
/// that is present is finite.
struct WindowAssessment {
    UsageWindow window;                     ///< The assessed reading, unchanged.
    std::optional<double> elapsedFraction;  ///< 0..1: share of the window, up to its horizon, behind us.
    std::optional<double> evenPacePercent;  ///< The used percent that even spending would show now.
    std::optional<double> ratePerHour;      ///< Percentage points per hour.
    RateBasis rateBasis = RateBasis::none;
    std::optional<double> projectedAtReset;        ///< Used percent at the horizon at this rate; may exceed 100.
    std::optional<Seconds> timeToLimit;            ///< Present only when the limit comes before the horizon.
    std::optional<Seconds> timeToReset;            ///< To the real reset, even when a planned one is nearer.
    std::optional<double> sustainableRatePerHour;  ///< Points per hour that use up the headroom at the horizon.
    VornStatus status = VornStatus::comfortable;
    std::optional<Instant> plannedResetAt;  ///< The user's planned reset, when it cuts this window short.

    /// The planned reset, else the window's own.
    [[nodiscard]] std::optional<Instant> horizon() const;
    [[nodiscard]] std::optional<double> unusedAtReset() const;  ///< 0..100
    /// Points ahead of even pace; positive means spending too fast.
    [[nodiscard]] std::optional<double> paceDelta() const;
    /// What this window alone would advise.
    [[nodiscard]] std::optional<VornSteer> steer() const;

    bool operator==(const WindowAssessment&) const = default;
};

}  // namespace vorn
