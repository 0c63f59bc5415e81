#include "core/analysis/burn_rate.hpp"

#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;

TEST(BurnRate, takesTheFirstBasisThatYieldsAValue) {
    using enum RateBasis;
    const WindowKind session = WindowKind::session();
    const WindowKind week = WindowKind::week();
    const ActivitySummary quiet;
    // Of 300 tokens a third in the last 20 minutes.
    const ActivitySummary busy = activity({{-2h, 200}, {-10min, 100}});
    const ActivitySummary idle = activity({{-2h, 200}, {-20min - 1s, 100}});
    const struct {
        const char* name;
        UsageWindow window;
        Course course;
        const ActivitySummary* activity;
        double perHour;  ///< Below 0 for none.
        RateBasis basis;
    } cases[] = {
        {"local activity", reading(session, 30, 2h), {{-40min, 10}}, &busy, 30, localActivity},
        {"nothing lately", reading(session, 30, 2h), {{-40min, 10}}, &idle, 0, localActivity},
        {"just enough rise", reading(session, 3, 2h), {{-40min, 1}}, &busy, 3, localActivity},
        {"too little rise", reading(session, 2.9, 2h), {{-30min, 0.9}}, &busy, 4, recent},
        {"no local tokens", reading(session, 20, 2h), {{-40min, 10}}, &quiet, 15, recent},
        {"week ignores activity", reading(week, 40, 72h), {{-12h, 28}}, &busy, 1, recent},
        {"at the look-back", reading(session, 20, 2h), {{-45min, 5}}, nullptr, 20, recent},
        {"before the look-back", reading(session, 21, 2h), {{-45min - 1s, 5}}, nullptr, 7, windowAverage},
        {"falling", reading(session, 20, 2h), {{-30min, 25}}, nullptr, 0, recent},
        {"from the future", reading(session, 20, 2h), {{10min, 25}}, nullptr, 30, recent},
        {"shortest span", reading(session, 12, 2h), {{-480s, 8}}, nullptr, 30, recent},
        {"too short a span", reading(session, 12, 2h), {{-479s, 8}}, nullptr, 4, windowAverage},
        {"old enough", reading(session, 3, 4h + 15min), {}, nullptr, 4, windowAverage},
        {"too young", reading(session, 3, 4h + 15min + 1s), {}, nullptr, -1, none},
        {"week span", reading(week, 40, 72h), {{-6h, 34}}, nullptr, 1, recent},
        {"week span too short", reading(week, 48, 72h), {{-6h + 1s, 34}}, nullptr, 0.5, windowAverage},
        {"week old enough", reading(week, 25.2, 168h - 25.2h), {}, nullptr, 1, windowAverage},
        {"week too young", reading(week, 25, 143h), {}, nullptr, -1, none},
        {"below nothing", reading(session, -4, 2h), {}, nullptr, 0, windowAverage},
        {"slope since the epoch", reading(session, 20, 2h), {{-40min, 60}, {-30min, 10}}, nullptr, 20, recent},
        {"average of the epoch", reading(session, 20, 1h), {{-2h, 60}, {-50min, 10}}, nullptr, 12, windowAverage},
        {"epoch too young", reading(session, 20, 1h), {{-50min, 60}, {-7min, 10}}, nullptr, -1, none},
        {"below the epoch", reading(session, 8, 1h), {{-2h, 60}, {-50min, 10}}, nullptr, 0, windowAverage},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const MatchingSamples samples = history(c.course);
        const Seconds elapsed = c.window.kind.length() - (*c.window.resetsAt - kNow);
        const auto rate = VornEngine::burnRate(
            c.window, {.elapsed = elapsed, .history = samples, .activity = c.activity, .now = kNow});
        EXPECT_STREQ(rawValue(rate.basis), rawValue(c.basis));
        EXPECT_NEAR(rate.perHour.value_or(-1), c.perHour, 1e-9);
    }
}

TEST(BurnRate, calibratesLocalActivityByTheRiseSinceTheStart) {
    const ActivitySummary replies = activity({{-6h, 1000}, {-4h, 900}, {-60min, 60}, {-4min, 40}});
    const struct {
        const char* name;
        double used;
        Seconds resetsIn;
        std::optional<WindowEpoch> epoch;
        double perHour;  ///< Below 0 for none.
    } cases[] = {
        {"the whole window", 50, 30min, {}, 6},
        {"only the epoch", 20, 30min, {{kNow - 1h, 10}}, 12},
        {"epoch before the window", 20, 4h, {{kNow - 3h, 10}}, 12},
        {"too little rise in the epoch", 12.9, 30min, {{kNow - 1h, 10}}, -1},
        {"shorter than the recent span", 10, 5h - 5min, {}, 120},
        {"too young", 10, 5h - 5min + 1s, {}, -1},
        {"no tokens since the start", 10, 5h - 3min, {}, -1},
        {"start ahead", 10, 6h, {}, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const UsageWindow window = reading(WindowKind::session(), c.used, c.resetsIn);
        const auto rate = VornEngine::localRate(window, {.activity = replies, .now = kNow, .epoch = c.epoch});
        EXPECT_NEAR(rate.value_or(-1), c.perHour, 1e-9);
    }
}

TEST(BurnRate, aFallOfTenPointsOpensAnEpoch) {
    const std::pair<Course, std::optional<WindowEpoch>> cases[] = {
        {{{-1h, 50}}, {}},
        {{{-2h, 50}, {-1h, 40}}, {{kNow - 1h, 40}}},
        {{{-2h, 50}, {-1h, 40.1}}, {}},
        {{{-3h, 50}, {-2h, 44}, {-1h, 38}}, {}},
        {{{-4h, 50}, {-3h, 5}, {-2h, 30}, {-1h, 0}}, {{kNow - 1h, 0}}},
        {{{-1h, 40}, {-2h, 50}}, {{kNow - 1h, 40}}},
    };
    for (const auto& [course, epoch] : cases) {
        EXPECT_EQ(VornEngine::epoch(history(course)), epoch) << course.back().second;
    }
}

TEST(BurnRate, slopeIsLeastSquaresOverDistinctTimes) {
    const auto slope = [](const std::vector<VornEngine::RatePoint>& points, Seconds minimumSpan = 0s) {
        return VornEngine::slopePerHour(points, minimumSpan);
    };
    const Instant later = kNow + 1h;
    EXPECT_EQ(slope({}), std::nullopt);
    EXPECT_EQ(slope({{kNow, 0}, {later, 6}, {kNow + 2h, 6}}, 2h), 3);
    EXPECT_EQ(slope({{kNow, 0}, {later, 6}, {kNow + 2h, 6}}, 2h + 1s), std::nullopt);
    EXPECT_EQ(slope({{later, 90}, {kNow, 10}, {later, 30}, {kNow, 20}}), 10);  // the later of one time counts
    EXPECT_EQ(slope({{kNow, 20}, {later, 10}, {later, std::nan("")}, {Instant{Seconds{std::nan("")}}, 5}}), -10);
    EXPECT_EQ(slope({{kNow, -1e308}, {later, 1e308}}), std::nullopt);  // an overflow is no rate
    std::vector<VornEngine::RatePoint> oneTime(5000, {kNow, 50});
    EXPECT_EQ(slope(oneTime), std::nullopt);
    oneTime.push_back({later, 60});
    EXPECT_EQ(slope(oneTime), 10);
}

}  // namespace
}  // namespace vorn
