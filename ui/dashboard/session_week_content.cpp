#include "ui/dashboard/session_week_content.hpp"

#include <algorithm>
#include <cmath>

#include "core/wording/answer_text.hpp"
#include "core/wording/format.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {

SessionWeekContent sessionWeekContent(const Answer& answer) {
    const auto& ratio = answer.ratio;
    if (!ratio || !std::isfinite(ratio->weekPointsPerSessionPoint)) {
        return {.waiting = QString::fromStdString(Format::whyNoRatio(answer))};
    }
    const double perWeek = ratio->sessionsPerWeek();
    SessionWeekContent content{
        .cost = shownPhrase(Format::words("≈ ") + Format::sessionCost(*ratio)),
        .perWeek = leftToRight(Format::sessions(perWeek)),
        .left = answer.sessionsLeft ? leftToRight(Format::sessions(*answer.sessionsLeft)) : QString(),
        .measured = QString::fromStdString(Format::learntFrom(*ratio))};
    // More pips say nothing that the number does not.
    constexpr double kMostPips = 60;
    if (perWeek > 0 && perWeek <= kMostPips) {
        const WindowAssessment* const week = answer.week();
        const double used = week != nullptr ? week->window.usedPercent / kLimitPercent : 0;
        content.sessions = perWeek;
        content.usedSessions = perWeek * std::clamp(used, 0.0, 1.0);
    }
    return content;
}

}  // namespace vorn
