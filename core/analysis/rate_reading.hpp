#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/analysis/burn_rate.hpp"

namespace vorn {

/// A window's burn rate measured over one horizon.
struct RateReading {
    enum class Horizon : std::uint8_t { now, hour, fiveHours, day, window };
    static constexpr std::array allHorizons{Horizon::now, Horizon::hour, Horizon::fiveHours, Horizon::day,
                                            Horizon::window};

    Horizon horizon = Horizon::now;
    std::optional<double> ratePerHour;  ///< Percentage points per hour; absent when the horizon has too little data.
    bool operator==(const RateReading&) const = default;
};

/// "now", "hour", "fiveHours", "day", "window": the form written in JSON.
const char* rawValue(RateReading::Horizon horizon);
/// "Now", "1 h", "5 h", "24 h", "Window avg".
const char* label(RateReading::Horizon horizon);

namespace VornEngine {

/// One reading for each horizon, in their order. `activity`: null when local activity is switched off.
std::vector<RateReading> rates(const UsageWindow& window, const MatchingSamples& history,
                               const ActivitySummary* activity, Instant now);

}  // namespace VornEngine
}  // namespace vorn
