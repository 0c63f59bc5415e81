#include "ui/answer/freshness_content.hpp"

#include "core/wording/answer_text.hpp"
#include "core/wording/failure_text.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

/// Of a failed asking there is one place to read: here, or instead of the cards.
void showProblem(const Answer& answer, FreshnessContent& content) {
    const auto& failure = answer.asking.failure;
    if (failure && answer.stage != Answer::Stage::failed) {
        content.problem = QString::fromStdString(Format::sentence(*failure));
        content.remedy = QString::fromStdString(Format::remedy(answer));
        content.canRetry = true;
    } else if (const auto problems = Format::storageProblems(answer.unsaved); !problems.empty()) {
        content.problem = QString::fromStdString(problems.front());
    }
}

}  // namespace

FreshnessContent freshnessContent(const Answer& answer) {
    const Format::Placeholder placeholder = Format::placeholder(answer);
    const auto& failure = answer.asking.failure;
    FreshnessContent content{
        .stage = StageForViews::from(answer.stage),
        .title = QString::fromStdString(placeholder.title),
        .explanation = QString::fromStdString(placeholder.text),
        .quoted = QString::fromStdString(placeholder.quoted),
        .needsClaude = failure && failure->kind == ProbeFailure::Kind::claudeNotFound,
        .text = shownPhrase(Format::freshness(answer)),
        .isAsking = answer.asking.isRunning,
    };
    showProblem(answer, content);
    return content;
}

}  // namespace vorn
