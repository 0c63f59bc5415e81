#include "core/analysis/burn_rate.hpp"

#include <algorithm>
#include <cmath>

#include "core/analysis/finite.hpp"
#include "core/data/usage_state.hpp"

namespace vorn {

using namespace std::chrono_literals;

const char* rawValue(RateBasis basis) {
    switch (basis) {
        case RateBasis::localActivity:
            return "localActivity";
        case RateBasis::recent:
            return "recent";
        case RateBasis::windowAverage:
            return "windowAverage";
        case RateBasis::none:
            break;
    }
    return "none";
}

namespace VornEngine {
namespace {

/// Percentage points a window must have risen before its rise says what a token costs: readings are whole percents.
constexpr double kCalibrationRise = 3.0;
/// The stretch of local activity whose weight makes the present rate.
constexpr Seconds kLocalActivitySpan{1200};
/// Anything shorter than this says more about one reply than about a pace.
constexpr Seconds kShortestLocalSpan{300};

/// How the rate of one kind of window is formed.
struct RateRules {
    bool usesLocalActivity;  ///< Local activity shows minutes, which only the session is short enough for.
    Seconds lookBack;        ///< How much recent history the slope is taken over.
    Seconds minimumSpan;     ///< Of the readings behind a slope.
    Seconds minimumAge;      ///< Of a window (or epoch) whose average stands for its pace: 15 % of its length.
};

RateRules rateRules(const WindowKind& kind, const Thresholds& thresholds) {
    if (kind.isSession()) {
        return {.usesLocalActivity = true,
                .lookBack = recentLookBack(kind),
                .minimumSpan = thresholds.minimumRecentSpan,
                .minimumAge = 45min};
    }
    return {.usesLocalActivity = false, .lookBack = recentLookBack(kind), .minimumSpan = 6h, .minimumAge = 90720s};
}

std::optional<double> recentRate(const UsageWindow& window, const BurnRateInput& input, const RateRules& rules,
                                 const std::optional<WindowEpoch>& epoch) {
    const Instant lookBackStart = input.now - rules.lookBack;
    const auto recent = input.history.since(epoch ? std::max(lookBackStart, epoch->start) : lookBackStart);
    std::vector<RatePoint> points(recent.begin(), recent.end());
    points.push_back({window.observedAt, window.usedPercent});
    const auto slope = slopePerHour(std::move(points), rules.minimumSpan);
    return slope ? std::optional(std::max(0.0, *slope)) : std::nullopt;
}

std::optional<double> averageRate(const UsageWindow& window, const BurnRateInput& input, const RateRules& rules,
                                  const std::optional<WindowEpoch>& epoch) {
    const Seconds age = epoch ? input.now - epoch->start : input.elapsed;
    if (age < rules.minimumAge) {
        return std::nullopt;
    }
    return averagePerHour(window.usedPercent - (epoch ? epoch->usedPercent : 0), age);
}

/// In order of time; of points with one time only the last given is left.
void collapseTimes(std::vector<RatePoint>& points) {
    if (!std::ranges::is_sorted(points, {}, &RatePoint::time)) {
        std::ranges::stable_sort(points, {}, &RatePoint::time);
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const bool isOvertaken = i + 1 < points.size() && points[i + 1].time == points[i].time;
        if (!isOvertaken) {
            points[kept++] = points[i];
        }
    }
    points.resize(kept);
}

}  // namespace

Seconds recentLookBack(const WindowKind& kind) {
    if (kind.isSession()) {
        return 45min;
    }
    // A day covers one sleep and one working day, so that neither passes for the pace of the week.
    return 24h;
}

BurnRate burnRate(const UsageWindow& window, const BurnRateInput& input) {
    const RateRules rules = rateRules(window.kind, input.thresholds);
    const auto windowEpoch = epoch(input.history);
    if (rules.usesLocalActivity && input.activity != nullptr) {
        if (const auto rate =
                localRate(window, {.activity = *input.activity, .now = input.now, .epoch = windowEpoch})) {
            return {rate, RateBasis::localActivity};
        }
    }
    if (const auto rate = recentRate(window, input, rules, windowEpoch)) {
        return {rate, RateBasis::recent};
    }
    if (const auto rate = averageRate(window, input, rules, windowEpoch)) {
        return {rate, RateBasis::windowAverage};
    }
    return {};
}

std::optional<WindowEpoch> epoch(const MatchingSamples& history) {
    const auto points = history.points();
    for (std::size_t i = points.size(); i > 1; --i) {
        const RatePoint& current = points[i - 1];
        if (points[i - 2].value - current.value >= UsageState::resetDrop) {
            return WindowEpoch{current.time, current.value};
        }
    }
    return std::nullopt;
}

std::optional<double> slopePerHour(std::vector<RatePoint> points, Seconds minimumSpan) {
    std::erase_if(points, [](const RatePoint& point) { return !isFinite(point); });
    collapseTimes(points);
    if (points.size() < 2 || points.back().time - points.front().time < minimumSpan) {
        return std::nullopt;
    }
    const Instant start = points.front().time;
    const auto count = static_cast<double>(points.size());
    double sumHours = 0;
    double sumValues = 0;
    for (const RatePoint& point : points) {
        sumHours += (point.time - start) / 1h;
        sumValues += point.value;
    }
    const double meanHours = sumHours / count;
    const double meanValue = sumValues / count;
    double covariance = 0;
    double variance = 0;
    for (const RatePoint& point : points) {
        const double hours = (point.time - start) / 1h - meanHours;
        covariance += hours * (point.value - meanValue);
        variance += hours * hours;
    }
    return variance > 0 ? finiteOrAbsent(covariance / variance) : std::nullopt;
}

std::optional<double> localRate(const UsageWindow& window, const LocalRateInput& input) {
    if (!window.resetsAt) {
        return std::nullopt;
    }
    const Instant windowStart = *window.resetsAt - window.kind.length();
    const Instant start = input.epoch ? std::max(input.epoch->start, windowStart) : windowStart;
    const double gained = window.usedPercent - (input.epoch ? input.epoch->usedPercent : 0);
    if (gained < kCalibrationRise) {
        return std::nullopt;
    }
    const double calibrationWeight = input.activity.weight(start, window.observedAt);
    if (calibrationWeight <= 0) {
        return std::nullopt;
    }
    const Instant recentStart = std::max(input.now - kLocalActivitySpan, start);
    const Seconds span = input.now - recentStart;
    if (span < kShortestLocalSpan) {
        return std::nullopt;
    }
    const double recentWeight = input.activity.weight(recentStart, input.now);
    return finiteOrAbsent(gained / calibrationWeight * recentWeight / (span / 1h));
}

std::optional<double> averagePerHour(double rise, Seconds time) {
    return finiteOrAbsent(std::max(0.0, rise) / (time / 1h));
}

}  // namespace VornEngine
}  // namespace vorn
