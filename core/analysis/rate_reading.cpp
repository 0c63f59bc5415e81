#include "core/analysis/rate_reading.hpp"

#include <algorithm>

namespace vorn {

using namespace std::chrono_literals;
using Horizon = RateReading::Horizon;

const char* rawValue(Horizon horizon) {
    switch (horizon) {
        case Horizon::now:
            return "now";
        case Horizon::hour:
            return "hour";
        case Horizon::fiveHours:
            return "fiveHours";
        case Horizon::day:
            return "day";
        case Horizon::window:
            break;
    }
    return "window";
}

const char* label(Horizon horizon) {
    switch (horizon) {
        case Horizon::now:
            return "Now";
        case Horizon::hour:
            return "1 h";
        case Horizon::fiveHours:
            return "5 h";
        case Horizon::day:
            return "24 h";
        case Horizon::window:
            break;
    }
    return "Window avg";
}

namespace VornEngine {
namespace {

/// A window or epoch younger than this has no average worth showing.
constexpr Seconds kShortestAverage = 10min;

struct SlopeHorizon {
    Horizon horizon;
    Seconds length;
    Seconds minimumSpan;  ///< Of the readings behind the slope: a quarter of the length, less for five hours.
};
constexpr std::array kSlopeHorizons{
    SlopeHorizon{Horizon::hour, 1h, 15min},
    SlopeHorizon{Horizon::fiveHours, 5h, 1h},
    SlopeHorizon{Horizon::day, 24h, 6h},
};

std::optional<double> slopeRate(std::span<const RatePoint> history, const UsageWindow& window, Instant start,
                                Seconds minimumSpan) {
    const auto first = std::ranges::lower_bound(history, start, {}, &RatePoint::time);
    std::vector<RatePoint> points(first, history.end());
    if (window.observedAt >= start) {
        points.push_back({window.observedAt, window.usedPercent});
    }
    const auto slope = slopePerHour(std::move(points), minimumSpan);
    return slope ? std::optional(std::max(0.0, *slope)) : std::nullopt;
}

std::optional<Seconds> timeSinceStart(const UsageWindow& window, const std::optional<WindowEpoch>& epoch, Instant now) {
    if (epoch) {
        return now - epoch->start;
    }
    if (!window.resetsAt) {
        return std::nullopt;
    }
    return window.kind.length() - (*window.resetsAt - now);
}

std::optional<double> windowRate(const UsageWindow& window, const std::optional<WindowEpoch>& epoch, Instant now) {
    const auto time = timeSinceStart(window, epoch, now);
    if (!time || *time < kShortestAverage) {
        return std::nullopt;
    }
    return averagePerHour(window.usedPercent - (epoch ? epoch->usedPercent : 0), *time);
}

}  // namespace

std::vector<RateReading> rates(const UsageWindow& window, const MatchingSamples& history,
                               const ActivitySummary* activity, Instant now) {
    const auto windowEpoch = epoch(history);
    const auto points = windowEpoch ? history.since(windowEpoch->start) : history.points();
    std::vector<RateReading> readings;
    readings.push_back({Horizon::now, std::nullopt});
    if (activity != nullptr) {
        readings.back().ratePerHour = localRate(window, {.activity = *activity, .now = now, .epoch = windowEpoch});
    }
    for (const SlopeHorizon& slope : kSlopeHorizons) {
        readings.push_back({slope.horizon, slopeRate(points, window, now - slope.length, slope.minimumSpan)});
    }
    readings.push_back({Horizon::window, windowRate(window, windowEpoch, now)});
    return readings;
}

}  // namespace VornEngine
}  // namespace vorn
