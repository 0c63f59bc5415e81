#include "core/analysis/answer.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "core/analysis/assess.hpp"
#include "core/analysis/steer.hpp"

namespace vorn {
namespace {

Answer::Stage stageOf(const Evidence& evidence) {
    if (!evidence.windows.empty()) {
        return Answer::Stage::ready;
    }
    if (evidence.asking.failure) {
        return Answer::Stage::failed;
    }
    return evidence.asking.hasAnswered ? Answer::Stage::noLimits : Answer::Stage::starting;
}

/// What is plain to see of a reading that has not been judged: no rate, no projection, no status.
WindowAssessment figures(const UsageWindow& window, Instant now) {
    WindowAssessment assessment{.window = window};
    if (window.resetsAt && *window.resetsAt > now) {
        assessment.timeToReset = *window.resetsAt - now;
    }
    return assessment;
}

Answer::Card cardOf(const UsageWindow& window, const Evidence& evidence, Instant now) {
    if (!evidence.isJudged) {
        return {.assessment = figures(window, now), .rates = {}, .readings = {}};
    }
    const ActivitySummary* const activity = evidence.useActivity ? evidence.activity.get() : nullptr;
    MatchingSamples readings = evidence.history != nullptr ? evidence.history->matching(window) : MatchingSamples();
    auto assessment = VornEngine::assess(
        window,
        {.history = readings, .activity = activity, .now = now, .plannedResetAt = evidence.plan.horizon(window, now)});
    auto rates = VornEngine::rates(window, readings, activity, now);
    return {.assessment = std::move(assessment), .rates = std::move(rates), .readings = std::move(readings)};
}

/// While the most urgent window is limited the head speaks of that one, so that a person who cannot work never reads
/// that there is room.
Answer::Head headOf(const WindowAssessment& urgent, const std::optional<VornSteer>& steer) {
    const auto advice = urgent.status == VornStatus::limited ? urgent.steer() : steer;
    return {.kind = advice ? advice->kind : urgent.window.kind, .steer = advice};
}

void conclude(Answer& answer, const Evidence& evidence) {
    const std::vector<WindowAssessment> assessments = answer.assessments();
    answer.steer = VornEngine::steer(assessments, evidence.steeredBy, VornEngine::kSteerSwitchMargin);
    if (const auto urgent = VornEngine::headline(assessments)) {
        answer.urgent = urgent->window.kind;
        answer.head = headOf(*urgent, answer.steer);
    }
    answer.ratio = evidence.ratio;
    if (const WindowAssessment* const week = answer.week(); week != nullptr && answer.ratio) {
        answer.sessionsLeft = answer.ratio->sessionsLeft(week->window.usedPercent);
    }
}

void noteNewestReading(Answer& answer) {
    const auto newest = std::ranges::max_element(
        answer.cards, {}, [](const Answer::Card& card) { return card.assessment.window.observedAt; });
    if (newest != answer.cards.end()) {
        answer.observedAt = newest->assessment.window.observedAt;
        answer.source = newest->assessment.window.source;
    }
}

}  // namespace

const WindowAssessment* Answer::find(const WindowKind& kind) const {
    const auto found = std::ranges::find(
        cards, kind, [](const Card& card) -> const WindowKind& { return card.assessment.window.kind; });
    return found == cards.end() ? nullptr : &found->assessment;
}

std::vector<WindowAssessment> Answer::assessments() const {
    std::vector<WindowAssessment> all;
    all.reserve(cards.size());
    std::ranges::transform(cards, std::back_inserter(all), &Card::assessment);
    return all;
}

bool Answer::hasBurst() const {
    constexpr std::size_t kManyReplies = 20;
    const WindowAssessment* const current = session();
    if (current == nullptr || !isJudged || activity == nullptr || !usesActivity) {
        return false;
    }
    const Instant readAt = current->window.observedAt;
    const Seconds since = now - readAt;
    const bool isLocal = current->rateBasis == RateBasis::localActivity;
    const double points = isLocal ? current->ratePerHour.value_or(0) * (since / std::chrono::hours(1)) : 0;
    const std::size_t replies = activity->events(readAt, now).size();
    return replies >= kManyReplies || (replies > 0 && points >= 1);
}

std::optional<Instant> Answer::lastObserved(DataSource wanted) const {
    std::optional<Instant> latest;
    for (const Card& card : cards) {
        if (card.assessment.window.source == wanted) {
            latest = std::max(latest, std::optional(card.assessment.window.observedAt));
        }
    }
    return latest;
}

std::vector<WindowAssessment> VornEngine::assessAll(std::span<const UsageWindow> windows, const HistoryIndex& history,
                                                    const ActivitySummary* activity, const ResetPlan& plan,
                                                    Instant now) {
    std::vector<WindowAssessment> assessments;
    assessments.reserve(windows.size());
    for (const UsageWindow& window : windows) {
        const MatchingSamples matching = history.matching(window);
        assessments.push_back(assess(
            window,
            {.history = matching, .activity = activity, .now = now, .plannedResetAt = plan.horizon(window, now)}));
    }
    return assessments;
}

Answer VornEngine::formAnswer(const Evidence& evidence, Instant now) {
    Answer answer{.now = now,
                  .stage = stageOf(evidence),
                  .isJudged = evidence.isJudged,
                  .isDemo = evidence.isDemo,
                  .others = evidence.others,
                  .moved = evidence.moved,
                  .insights = evidence.insights,
                  .plan = evidence.plan,
                  .asking = evidence.asking,
                  .unsaved = evidence.unsaved,
                  .activity = evidence.activity,
                  .usesActivity = evidence.useActivity};
    answer.cards.reserve(evidence.windows.size());
    for (const UsageWindow& window : evidence.windows) {
        answer.cards.push_back(cardOf(window, evidence, now));
    }
    if (answer.isJudged) {
        conclude(answer, evidence);
    }
    noteNewestReading(answer);
    return answer;
}

}  // namespace vorn
