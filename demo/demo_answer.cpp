#include "demo/demo_answer.hpp"

#include <memory>

namespace vorn::demo {

Evidence evidence(const Demo& demo, const HistoryIndex& history) {
    return {.windows = demo.windows,
            .history = &history,
            .activity = std::make_shared<ActivitySummary>(demo.activity),
            .plan = demo.plan,
            .ratio = VornEngine::sessionWeekRatio(demo.history, VornEngine::kMinimumSessionPoints),
            .insights = demo.insights,
            .asking = {.hasAnswered = true},
            .isDemo = true};
}

Answer answer(const Demo& demo, Instant now) {
    const HistoryIndex history(demo.history);
    return VornEngine::formAnswer(evidence(demo, history), now);
}

}  // namespace vorn::demo
