#include "core/analysis/forecast/forecast.hpp"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "core/analysis/forecast/forecast_clues.hpp"
#include "core/analysis/forecast/remaining_use.hpp"

namespace vorn {
namespace VornEngine {
namespace {

using namespace std::chrono_literals;

/// A burst spends more at first than at the end, so a session fills earlier than evenly. Fitted.
constexpr double kSessionBend = 1.75;

bool isForecastable(const UsageWindow& window, Instant now) {
    return window.resetsAt && std::isfinite(secondsSince1970(*window.resetsAt)) && *window.resetsAt > now &&
           *window.resetsAt - now < 366 * 24h && std::isfinite(window.usedPercent) &&
           std::isfinite(secondsSince1970(window.observedAt)) && std::isfinite(secondsSince1970(now));
}

/// The median time of the hit among the cases with one: what is to come is spread over the time to the reset as usual.
Instant hitAt(const Situation& s, const Clues& clues, const RemainingUse& remaining, double pHit) {
    const Instant reset = *s.window.resetsAt;
    const double missing = (100 - clues.used) / clues.scale;
    const double most = remaining.quantile(std::clamp(1 - pHit / 2, 0.01, 0.999));
    const double share = most > missing ? missing / most : 1;
    if (s.window.kind.isSession()) {
        return std::clamp(clues.from + (reset - clues.from) * std::pow(share, kSessionBend), s.now, reset);
    }
    const double expected = s.usual.expected(s.zone, clues.from, reset);
    return std::clamp(s.usual.reaching(expected * share, s.zone, clues.from, reset), s.now, reset);
}

}  // namespace

std::optional<Forecast> forecast(const UsageWindow& window, const ForecastInput& input) {
    if (!isForecastable(window, input.now)) {
        return std::nullopt;
    }
    const UsualWeek usual = UsualWeek::of(input.rhythm, input.zone, input.now);
    Forecast result{.weeksLearnt = usual.weeksKnown};
    if (window.usedPercent >= 100) {
        result.pHit = 1;
        result.p10 = result.p50 = result.p90 = window.usedPercent;
        result.hitAt = input.now;
        return result;
    }
    const Situation situation{.window = window,
                              .history = input.history,
                              .activity = input.activity,
                              .rhythm = input.rhythm,
                              .usual = usual,
                              .zone = input.zone,
                              .now = input.now};
    const bool isSession = window.kind.isSession();
    const Clues clues = isSession ? sessionClues(situation) : weekClues(situation);
    const RemainingUse remaining = isSession ? remainingUse(clues, prior::kSessionModel, prior::kSessionSoftening)
                                             : remainingUse(clues, prior::kWeekModel, prior::kWeekSoftening);
    result.pHit = remaining.exceeds((100 - clues.used) / clues.scale);
    result.p10 = clues.used + clues.scale * remaining.quantile(0.1);
    result.p50 = clues.used + clues.scale * remaining.quantile(0.5);
    result.p90 = clues.used + clues.scale * remaining.quantile(0.9);
    if (result.pHit >= 0.5) {
        result.hitAt = hitAt(situation, clues, remaining, result.pHit);
    }
    return result;
}

}  // namespace VornEngine

void PrintTo(const Forecast& forecast, std::ostream* out) {
    *out << forecast.pHit << " (" << forecast.p10 << ", " << forecast.p50 << ", " << forecast.p90 << ") "
         << (forecast.hitAt ? formatIso8601(*forecast.hitAt) : "no hit") << ", " << forecast.weeksLearnt << " weeks";
}

}  // namespace vorn
