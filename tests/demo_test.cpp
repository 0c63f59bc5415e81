#include "demo/demo.hpp"

#include <gtest/gtest.h>

#include "cli/status_report.hpp"
#include "tests/support/readings.hpp"

namespace vorn::demo {
namespace {

using namespace std::chrono_literals;

cli::StatusReport reportOf(const Demo& demo, Instant now) {
    return cli::analyse({.windows = demo.windows,
                         .insights = demo.insights,
                         .history = demo.history,
                         .activity = ActivitySummary(demo.activity),
                         .plan = demo.plan},
                        now);
}

TEST(Demo, StandsWhereItsNameSaysAtAnyMoment) {
    const struct {
        Scenario scenario;
        VornStatus status;
        std::optional<VornSteer::Direction> direction;
    } cases[] = {
        {Scenario::comfortable, VornStatus::comfortable, VornSteer::Direction::speedUp},
        {Scenario::watch, VornStatus::watch, VornSteer::Direction::onPace},
        {Scenario::atRisk, VornStatus::atRisk, VornSteer::Direction::easeOff},
        {Scenario::limited, VornStatus::limited, VornSteer::Direction::stop},
        {Scenario::plannedReset, VornStatus::comfortable, VornSteer::Direction::speedUp},
    };
    for (const auto& c : cases) {
        for (int i = 0; i < 12; ++i) {
            const Instant now = test::kNow + i * 6h + i * 17min + i * 0.37s;
            SCOPED_TRACE(std::string(name(c.scenario)) + " at " + formatIso8601(now));
            const cli::StatusReport report = reportOf(makeDemo(c.scenario, now), now);
            ASSERT_TRUE(report.headline && report.head && report.head->steer);
            EXPECT_EQ(report.headline->status, c.status);
            EXPECT_EQ(report.head->steer->direction(), c.direction);
            EXPECT_TRUE(report.sessionsLeft);
            EXPECT_EQ(report.cards.size(), 3U);
            EXPECT_EQ(report.cards[1].assessment.plannedResetAt.has_value(), c.scenario == Scenario::plannedReset);
        }
    }
}

TEST(Demo, IsAPlausibleWeekAndTheSameEachTime) {
    for (const Scenario scenario : allScenarios) {
        SCOPED_TRACE(name(scenario));
        EXPECT_EQ(scenarioNamed(name(scenario)), scenario);
        const Demo demo = makeDemo(scenario, test::kNow);
        const Demo again = makeDemo(scenario, test::kNow);
        EXPECT_EQ(demo.windows, again.windows);
        EXPECT_EQ(demo.history, again.history);
        EXPECT_EQ(demo.plan, again.plan);
        EXPECT_EQ(ActivitySummary(demo.activity).weight(Instant{}, test::kNow),
                  ActivitySummary(again.activity).weight(Instant{}, test::kNow));
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
