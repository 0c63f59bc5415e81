#include "demo/demo.hpp"

#include <algorithm>

#include <gtest/gtest.h>

#include "demo/demo_answer.hpp"
#include "tests/support/readings.hpp"

namespace vorn::demo {
namespace {

using namespace std::chrono_literals;

TEST(Demo, StandsWhereItsNameSaysAtAnyMoment) {
    using enum VornSteer::Direction;
    const std::tuple<Scenario, VornStatus, VornSteer::Direction> cases[] = {
        {Scenario::comfortable, VornStatus::comfortable, speedUp},
        {Scenario::watch, VornStatus::watch, onPace},
        {Scenario::atRisk, VornStatus::atRisk, easeOff},
        {Scenario::limited, VornStatus::limited, stop},
        {Scenario::plannedReset, VornStatus::comfortable, speedUp}};
    for (const auto& [scenario, status, direction] : cases) {
        for (int i = 0; i < 12; ++i) {
            const Instant now = test::kNow + i * 6h + i * 17min + i * 0.37s;
            SCOPED_TRACE(std::string(name(scenario)) + " at " + formatIso8601(now));
            const Answer shown = answer(makeDemo(scenario, now), now);
            ASSERT_TRUE(shown.urgent && shown.head && shown.head->steer);
            EXPECT_EQ(shown.urgentAssessment()->status, status);
            EXPECT_EQ(shown.head->steer->direction(), direction);
            EXPECT_EQ(shown.session()->rateBasis, RateBasis::localActivity);
            EXPECT_TRUE(shown.isDemo && shown.sessionsLeft);
            EXPECT_EQ(shown.cards.size(), 3U);
            EXPECT_EQ(shown.cards[1].assessment.plannedResetAt.has_value(), scenario == Scenario::plannedReset);
        }
    }
}

TEST(Demo, IsAPlausibleWeekAndTheSameEachTime) {
    for (const Scenario scenario : allScenarios) {
        SCOPED_TRACE(name(scenario));
        EXPECT_EQ(scenarioNamed(name(scenario)), scenario);
        const Demo demo = makeDemo(scenario, test::kNow);
        EXPECT_EQ(demo.history, makeDemo(scenario, test::kNow).history);
        EXPECT_TRUE(std::ranges::is_sorted(demo.history, {}, &HistorySample::observedAt));
        EXPECT_GE(demo.history.front().observedAt, test::kNow - 8 * 24h);
        EXPECT_LE(demo.history.back().observedAt, test::kNow);
        for (const HistorySample& sample : demo.history) {
            EXPECT_TRUE(sample.usedPercent >= 0 && sample.usedPercent <= 100) << sample.usedPercent;
            EXPECT_TRUE(sample.resetsAt && *sample.resetsAt >= sample.observedAt);
        }
        EXPECT_TRUE(std::ranges::is_sorted(demo.activity, {}, &ActivityEvent::timestamp));
        EXPECT_GT(demo.activity.size(), 500U);
        EXPECT_LE(demo.activity.back().timestamp, test::kNow);
    }
    EXPECT_EQ(scenarioNamed("At-Risk"), std::nullopt);
}

}  // namespace
}  // namespace vorn::demo
