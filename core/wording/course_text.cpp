#include "core/wording/course_text.hpp"

#include "core/wording/format.hpp"
#include "core/wording/window_text.hpp"

namespace vorn::Format {
namespace {

bool isLimited(const WindowAssessment& assessment) {
    return assessment.window.usedPercent >= kLimitPercent;
}

bool knowsReset(const WindowAssessment& assessment) {
    return assessment.timeToReset && assessment.window.resetsAt;
}

}  // namespace

Phrase sustainableText(const WindowAssessment& assessment) {
    const auto& sustainable = assessment.sustainableRatePerHour;
    return sustainable ? words("sustainable ") + figure(rate(*sustainable, assessment.window.kind)) : Phrase();
}

Phrase projectedText(const WindowAssessment& assessment) {
    if (!assessment.projectedAtReset) {
        return {};
    }
    // Nobody goes on at the limit, whatever the pace up to it was.
    const double projected = isLimited(assessment) ? assessment.window.usedPercent : *assessment.projectedAtReset;
    return joined({figure(percent(projected)), figure(percent(assessment.unusedAtReset().value_or(0))) + " unused"});
}

Phrase resetMoment(const WindowAssessment& assessment, Instant now) {
    if (knowsReset(assessment)) {
        return joined({words("in ") + figure(duration(*assessment.timeToReset)),
                       figure(clock(*assessment.window.resetsAt, now))});
    }
    return words(assessment.window.usedPercent > 0 ? "not known" : "");
}

std::string spokenCourse(const WindowAssessment& assessment, Instant now) {
    if (!knowsReset(assessment) && !(assessment.window.usedPercent > 0)) {
        return resetText(assessment, now).text();
    }
    std::string spoken = percent(assessment.window.usedPercent) + " used";
    if (const auto delta = assessment.paceDelta()) {
        spoken += ", " + pace(*delta);
    }
    if (assessment.projectedAtReset && !isLimited(assessment)) {
        spoken += ", projected " + percent(*assessment.projectedAtReset) +
                  (assessment.plannedResetAt ? " at the planned reset" : " at reset");
        spoken += assessment.timeToLimit ? ", reaches the limit at " + clock(now + *assessment.timeToLimit, now) : "";
    }
    return spoken + (knowsReset(assessment) ? ", resets " + clock(*assessment.window.resetsAt, now) : "");
}

}  // namespace vorn::Format
