#include "ui/views/pace_content.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "ui/format/format.hpp"
#include "ui/views/left_to_right.hpp"

namespace vorn {
namespace {

constexpr const char* kNothing = "–";

QString reasonFor(RateReading::Horizon horizon, const WindowKind& kind, bool readsActivity) {
    if (horizon == RateReading::Horizon::now) {
        return readsActivity ? "Too little was used on this computer to tell the pace of the last minutes."
                             : "Needs local activity, which is switched off.";
    }
    if (horizon == RateReading::Horizon::day && kind.isSession()) {
        return "A session is shorter than a day.";
    }
    return "Too little has been read in this time yet.";
}

/// How far from what can be sustained, on the scale of the arrow.
void addFactor(double rate, double sustainable, PaceRow& row) {
    const double ratio = rate > kNegligibleRatePerHour ? sustainable / rate : std::numeric_limits<double>::infinity();
    row.factor = leftToRight(Format::times(ratio));
    row.isTooFast = ratio < 1;
    if (std::isfinite(ratio)) {
        constexpr double kDoublings = 2;  // a factor of four
        constexpr double kSteps = 128;    // finer than the bar's pixels, so that it does not change all the time
        const double length = ratio > 0 ? std::clamp(-std::log2(ratio) / kDoublings, -1.0, 1.0) : 1;
        row.bar = std::round(length * kSteps) / kSteps;
    }
}

PaceRow rowOf(const RateReading& reading, const WindowAssessment& assessment, bool readsActivity) {
    const WindowKind& kind = assessment.window.kind;
    PaceRow row{.label = label(reading.horizon)};
    if (!reading.ratePerHour) {
        row.factor = kNothing;
        row.reason = reasonFor(reading.horizon, kind, readsActivity);
        return row;
    }
    row.rate = leftToRight(Format::rate(*reading.ratePerHour, kind));
    // At the limit nothing can be sustained, and no factor tells more than that.
    if (assessment.sustainableRatePerHour.value_or(0) > 0) {
        addFactor(*reading.ratePerHour, *assessment.sustainableRatePerHour, row);
    }
    return row;
}

}  // namespace

PaceContent paceContent(const WindowAssessment& assessment, const std::vector<RateReading>& rates, bool readsActivity,
                        Instant now) {
    const UsageWindow& window = assessment.window;
    PaceContent pace{.projected = kNothing};
    if (assessment.sustainableRatePerHour) {
        pace.sustainable = "sustainable " + leftToRight(Format::rate(*assessment.sustainableRatePerHour, window.kind));
    }
    for (const RateReading& reading : rates) {
        pace.rows.append(QVariant::fromValue(rowOf(reading, assessment, readsActivity)));
    }
    if (assessment.projectedAtReset) {
        // Nobody goes on at the limit, whatever the pace up to it was.
        const bool isLimited = window.usedPercent >= kLimitPercent;
        const double projected = isLimited ? window.usedPercent : *assessment.projectedAtReset;
        pace.projected = leftToRight(Format::percent(projected)) + " · " +
                         leftToRight(Format::percent(assessment.unusedAtReset().value_or(0))) + " unused";
        pace.isProjectedOver = !isLimited && projected >= kLimitPercent;
    }
    if (assessment.timeToReset && window.resetsAt) {
        pace.resets = "in " + leftToRight(Format::duration(*assessment.timeToReset)) + " · " +
                      leftToRight(Format::clock(*window.resetsAt, now));
    } else {
        pace.resets = window.usedPercent > 0 ? "not known" : kNothing;
    }
    return pace;
}

}  // namespace vorn
