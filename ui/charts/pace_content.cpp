#include "ui/charts/pace_content.hpp"

#include <algorithm>
#include <cmath>

#include "core/wording/course_text.hpp"
#include "core/wording/format.hpp"
#include "core/wording/window_text.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

constexpr const char* kNothing = "–";

/// How far the pace is from what can be sustained: -1 at a quarter of it or less to 1 at four times it or more.
double barLength(double rate, double sustainable) {
    constexpr double kDoublings = 2;  // a factor of four
    constexpr double kSteps = 128;    // finer than the bar's pixels, so that it does not change all the time
    if (!(rate > kNegligibleRatePerHour)) {
        return 0;
    }
    const double length = std::clamp(std::log2(rate / sustainable) / kDoublings, -1.0, 1.0);
    return std::round(length * kSteps) / kSteps;
}

PaceRow rowOf(const RateReading& reading, const WindowAssessment& assessment, bool usesActivity) {
    const WindowKind& kind = assessment.window.kind;
    PaceRow row{.label = label(reading.horizon)};
    if (!reading.ratePerHour) {
        row.factor = kNothing;
        row.reason = QString::fromStdString(Format::whyNoRate(reading.horizon, kind, usesActivity));
        return row;
    }
    const double rate = *reading.ratePerHour;
    const double sustainable = assessment.sustainableRatePerHour.value_or(0);
    row.rate = leftToRight(Format::rate(rate, kind));
    row.factor = leftToRight(Format::room(rate, sustainable));
    if (sustainable > 0) {
        row.isTooFast = rate > kNegligibleRatePerHour && rate > sustainable;
        row.bar = barLength(rate, sustainable);
    }
    return row;
}

QString orNothing(const Format::Phrase& phrase) {
    return phrase.isEmpty() ? QString(kNothing) : shownPhrase(phrase);
}

}  // namespace

PaceContent paceContent(const WindowAssessment& assessment, const std::vector<RateReading>& rates, bool usesActivity,
                        Instant now) {
    PaceContent pace{.sustainable = shownPhrase(Format::sustainableText(assessment)),
                     .projected = orNothing(Format::projectedText(assessment)),
                     .isProjectedOver = assessment.window.usedPercent < kLimitPercent &&
                                        assessment.projectedAtReset.value_or(0) >= kLimitPercent,
                     .resets = orNothing(Format::resetMoment(assessment, now))};
    for (const RateReading& reading : rates) {
        pace.rows.append(QVariant::fromValue(rowOf(reading, assessment, usesActivity)));
    }
    return pace;
}

}  // namespace vorn
