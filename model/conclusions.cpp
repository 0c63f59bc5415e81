#include "model/conclusions.hpp"

#include <algorithm>
#include <utility>

#include "core/analysis/steer.hpp"
#include "model/activity_keeper.hpp"
#include "model/plan_keeper.hpp"
#include "model/readings.hpp"

namespace vorn {
namespace {

std::optional<WindowKind> kindOf(const std::optional<VornSteer>& steer) {
    return steer ? std::optional(steer->kind) : std::nullopt;
}

}  // namespace

void Conclusions::draw(const Basis& basis, Instant now) {
    const Readings& readings = basis.readings;
    const std::vector<UsageWindow> windows = basis.readings.current(now);
    const bool readsActivity = basis.useActivity && !basis.isDemo;
    m_assessments = VornEngine::assessAll(
        windows, readings.index(), readsActivity ? basis.activity.summary().get() : nullptr, basis.plan.plan(), now);
    m_steer = VornEngine::steer(m_assessments, kindOf(m_steer), VornEngine::kSteerSwitchMargin);
    updateRatio(readings.history());
    m_answer = VornEngine::formAnswer({.windows = windows,
                                       .others = readings.others(),
                                       .moved = readings.moved(now),
                                       .history = &readings.index(),
                                       .activity = basis.activity.summary(),
                                       .useActivity = basis.isDemo || basis.useActivity,
                                       .plan = basis.plan.plan(),
                                       .ratio = m_ratio,
                                       .insights = readings.state().insights(),
                                       .asking = basis.asking,
                                       .unsaved = {.history = readings.isUnsaved(), .plan = basis.plan.problem()},
                                       .isJudged = basis.mayJudge && readings.areJudged(),
                                       .isDemo = basis.isDemo,
                                       .steeredBy = kindOf(m_answer.steer)},
                                      now);
}

void Conclusions::updateRatio(const std::vector<HistorySample>& history) {
    if (history.size() != std::exchange(m_ratioHistoryCount, history.size())) {
        m_ratio = VornEngine::sessionWeekRatio(history, VornEngine::kMinimumSessionPoints);
    }
}

const WindowAssessment* Conclusions::find(const WindowKind& kind) const {
    const auto found =
        std::ranges::find(m_assessments, kind, [](const auto& each) -> const WindowKind& { return each.window.kind; });
    return found != m_assessments.end() ? &*found : nullptr;
}

}  // namespace vorn
