#include "core/analysis/assess.hpp"

#include <algorithm>
#include <cmath>

#include "core/analysis/finite.hpp"

namespace vorn::VornEngine {
namespace {

using namespace std::chrono_literals;

/// The time to the window's reset; empty unless that lies ahead and the reading can be reckoned with. From here on
/// every number is finite or absent.
std::optional<Seconds> timeToReset(const UsageWindow& window, Instant now) {
    if (!window.resetsAt || !std::isfinite(window.usedPercent)) {
        return std::nullopt;
    }
    const Seconds left = *window.resetsAt - now;
    return left > 0s && std::isfinite(left.count()) ? std::optional(left) : std::nullopt;
}

/// The planned reset, when it comes before the window's own.
std::optional<Instant> cuttingShort(std::optional<Instant> planned, Instant now, Instant resetsAt) {
    return planned && *planned > now && *planned < resetsAt ? planned : std::nullopt;
}

/// The time until the headroom is used up, when that comes before the horizon.
std::optional<Seconds> timeToLimit(double headroom, std::optional<double> ratePerHour, double remainingHours) {
    if (!ratePerHour || *ratePerHour <= kNegligibleRatePerHour || headroom <= 0) {
        return std::nullopt;
    }
    const double hoursToLimit = headroom / *ratePerHour;
    return hoursToLimit < remainingHours ? std::optional<Seconds>(hoursToLimit * 1h) : std::nullopt;
}

VornStatus statusOf(const WindowAssessment& assessment, const Thresholds& thresholds) {
    if (assessment.window.usedPercent >= kLimitPercent) {
        return VornStatus::limited;
    }
    if (assessment.timeToLimit) {
        return VornStatus::atRisk;
    }
    const bool projectsHigh = assessment.projectedAtReset && *assessment.projectedAtReset >= thresholds.watchProjection;
    return projectsHigh ? VornStatus::watch : VornStatus::comfortable;
}

/// What two windows of one status are compared by.
double urgency(const WindowAssessment& assessment) {
    return assessment.projectedAtReset.value_or(assessment.window.usedPercent);
}

bool isMoreUrgent(const WindowAssessment& candidate, const WindowAssessment& best) {
    if (candidate.status != best.status) {
        return candidate.status > best.status;
    }
    if (candidate.status == VornStatus::atRisk && candidate.timeToLimit && best.timeToLimit &&
        *candidate.timeToLimit != *best.timeToLimit) {
        return *candidate.timeToLimit < *best.timeToLimit;
    }
    if (urgency(candidate) != urgency(best)) {
        return urgency(candidate) > urgency(best);
    }
    return candidate.window.usedPercent > best.window.usedPercent;
}

}  // namespace

WindowAssessment assess(const UsageWindow& window, const AssessmentInput& input) {
    WindowAssessment result{.window = window};
    result.timeToReset = timeToReset(window, input.now);
    if (!result.timeToReset) {
        result.status = statusOf(result, input.thresholds);
        return result;
    }
    // A reset further out than one window length belongs to a window that has just begun.
    const Seconds elapsed = std::max<Seconds>(0s, window.kind.length() - *result.timeToReset);
    result.plannedResetAt = cuttingShort(input.plannedResetAt, input.now, *window.resetsAt);
    const Seconds remaining = *result.horizon() - input.now;
    const double remainingHours = remaining / 1h;
    const double headroom = std::max(0.0, kLimitPercent - window.usedPercent);

    result.elapsedFraction = std::min(elapsed / (elapsed + remaining), 1.0);
    result.evenPacePercent = *result.elapsedFraction * 100;
    const BurnRate rate = burnRate(window, {.elapsed = elapsed,
                                            .history = input.history,
                                            .activity = input.activity,
                                            .now = input.now,
                                            .thresholds = input.thresholds});
    result.ratePerHour = rate.perHour;
    result.rateBasis = rate.basis;
    if (rate.perHour) {
        result.projectedAtReset = finiteOrAbsent(window.usedPercent + remainingHours * *rate.perHour);
    }
    result.timeToLimit = timeToLimit(headroom, rate.perHour, remainingHours);
    if (remainingHours > 0) {
        result.sustainableRatePerHour = finiteOrAbsent(headroom / remainingHours);
    }
    result.status = statusOf(result, input.thresholds);
    return result;
}

std::optional<WindowAssessment> headline(std::span<const WindowAssessment> assessments) {
    const WindowAssessment* best = nullptr;
    for (const WindowAssessment& candidate : assessments) {
        if (best == nullptr || isMoreUrgent(candidate, *best)) {
            best = &candidate;
        }
    }
    return best != nullptr ? std::optional(*best) : std::nullopt;
}

}  // namespace vorn::VornEngine
