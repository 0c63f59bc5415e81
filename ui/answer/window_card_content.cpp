#include "ui/answer/window_card_content.hpp"

#include <algorithm>
#include <cmath>

#include "core/wording/format.hpp"
#include "core/wording/window_text.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

constexpr int kDaysOfWeek = 7;

/// Percent as a share of the bar.
double share(std::optional<double> percent) {
    if (!percent || !std::isfinite(*percent)) {
        return -1;
    }
    return std::clamp(*percent / kLimitPercent, 0.0, 1.0);
}

void showVerdict(const WindowAssessment& assessment, Instant now, WindowCardContent& card) {
    card.status = StatusForViews::from(assessment.status);
    card.statusText = label(assessment.status);
    card.projected = share(assessment.projectedAtReset);
    card.evenPace = share(assessment.evenPacePercent);
    card.verdict = QString::fromStdString(Format::verdict(assessment, now));
    card.pace = shownPhrase(Format::paceText(assessment));
    card.plannedReset = QString::fromStdString(Format::plannedResetNote(assessment));
}

}  // namespace

WindowCardContent windowCardContent(const WindowAssessment& assessment, bool isJudged, Instant now) {
    const UsageWindow& window = assessment.window;
    WindowCardContent card{.kind = window.kind,
                           .title = QString::fromStdString(window.kind.title()),
                           .usedText = QString::fromStdString(Format::percent(window.usedPercent)),
                           .used = std::max(0.0, share(window.usedPercent)),
                           .segments = window.kind.isSession() ? 1 : kDaysOfWeek,
                           .reset = shownPhrase(Format::resetText(assessment, now)),
                           .shortReset = shownPhrase(Format::shortResetText(assessment)),
                           .spoken = QString::fromStdString(Format::spokenWindow(assessment, now, isJudged))};
    if (isJudged) {
        showVerdict(assessment, now, card);
    }
    return card;
}

}  // namespace vorn
