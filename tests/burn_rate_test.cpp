#include "core/analysis/burn_rate.hpp"

#include <limits>

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;
using VornEngine::slopePerHour;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(BurnRate, takesTheFirstBasisThatYieldsAValue) {
    const WindowKind session = WindowKind::session();
    const WindowKind week = WindowKind::week();
    const ActivitySummary none;
    // Of 300 tokens a third in the last 20 minutes.
    const ActivitySummary busy = activity({{-2h, 200}, {-10min, 100}});
    const ActivitySummary idle = activity({{-2h, 200}, {-20min - 1s, 100}});
    const struct {
        const char* name;
        UsageWindow window;
        Course course;
        const ActivitySummary* activity;
        std::optional<double> perHour;
        RateBasis basis;
    } cases[] = {
        {"local activity", reading(session, 30, 2h), {{-40min, 10}}, &busy, 30, RateBasis::localActivity},
        {"nothing lately", reading(session, 30, 2h), {{-40min, 10}}, &idle, 0, RateBasis::localActivity},
        {"just enough rise", reading(session, 3, 2h), {{-40min, 1}}, &busy, 3, RateBasis::localActivity},
        {"too little rise", reading(session, 2.9, 2h), {{-30min, 0.9}}, &busy, 4, RateBasis::recent},
        {"no local tokens", reading(session, 20, 2h), {{-40min, 10}}, &none, 15, RateBasis::recent},
        {"week ignores activity", reading(week, 40, 72h), {{-12h, 28}}, &busy, 1, RateBasis::recent},
        {"at the look-back", reading(session, 20, 2h), {{-45min, 5}}, nullptr, 20, RateBasis::recent},
        {"before the look-back", reading(session, 21, 2h), {{-45min - 1s, 5}}, nullptr, 7, RateBasis::windowAverage},
        {"falling", reading(session, 20, 2h), {{-30min, 25}}, nullptr, 0, RateBasis::recent},
        {"from the future", reading(session, 20, 2h), {{10min, 25}}, nullptr, 30, RateBasis::recent},
        {"shortest span", reading(session, 12, 2h), {{-480s, 8}}, nullptr, 30, RateBasis::recent},
        {"too short a span", reading(session, 12, 2h), {{-479s, 8}}, nullptr, 4, RateBasis::windowAverage},
        {"old enough", reading(session, 3, 4h + 15min), {}, nullptr, 4, RateBasis::windowAverage},
        {"too young", reading(session, 3, 4h + 15min + 1s), {}, nullptr, std::nullopt, RateBasis::none},
        {"week span", reading(week, 40, 72h), {{-6h, 34}}, nullptr, 1, RateBasis::recent},
        {"week span too short", reading(week, 48, 72h), {{-6h + 1s, 34}}, nullptr, 0.5, RateBasis::windowAverage},
        {"week old enough", reading(week, 25.2, 168h - 25.2h), {}, nullptr, 1, RateBasis::windowAverage},
        {"week too young", reading(week, 25, 143h), {}, nullptr, std::nullopt, RateBasis::none},
        {"below nothing", reading(session, -4, 2h), {}, nullptr, 0, RateBasis::windowAverage},
        {"slope since the epoch",
         reading(session, 20, 2h),
         {{-40min, 60}, {-30min, 10}},
         nullptr,
         20,
         RateBasis::recent},
        {"average of the epoch",
         reading(session, 20, 1h),
         {{-2h, 60}, {-50min, 10}},
         nullptr,
         12,
         RateBasis::windowAverage},
        {"epoch too young",
         reading(session, 20, 1h),
         {{-50min, 60}, {-7min, 10}},
         nullptr,
         std::nullopt,
         RateBasis::none},
        {"below the epoch", reading(session, 8, 1h), {{-2h, 60}, {-50min, 10}}, nullptr, 0, RateBasis::windowAverage},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const MatchingSamples samples = history(c.course);
        const Seconds elapsed = c.window.kind.length() - (*c.window.resetsAt - kNow);
        const auto rate = VornEngine::burnRate(
            c.window, {.elapsed = elapsed, .history = samples, .activity = c.activity, .now = kNow});
        EXPECT_STREQ(rawValue(rate.basis), rawValue(c.basis));
        ASSERT_EQ(rate.perHour.has_value(), c.perHour.has_value());
        EXPECT_NEAR(rate.perHour.value_or(0), c.perHour.value_or(0), 1e-9);
    }
}

TEST(BurnRate, calibratesLocalActivityByTheRiseSinceTheStart) {
    const ActivitySummary replies = activity({{-6h, 1000}, {-4h, 900}, {-60min, 60}, {-4min, 40}});
    const std::optional<WindowEpoch> anHourAgo = WindowEpoch{kNow - 1h, 10};
    const struct {
        const char* name;
        double used;
        Seconds resetsIn;
        std::optional<WindowEpoch> epoch;
        std::optional<double> perHour;
    } cases[] = {
        {"the whole window", 50, 30min, std::nullopt, 6},
        {"only the epoch", 20, 30min, anHourAgo, 12},
        {"epoch before the window", 20, 4h, WindowEpoch{kNow - 3h, 10}, 12},
        {"too little rise in the epoch", 12.9, 30min, anHourAgo, std::nullopt},
        {"shorter than the recent span", 10, 5h - 5min, std::nullopt, 120},
        {"too young", 10, 5h - 5min + 1s, std::nullopt, std::nullopt},
        {"no tokens since the start", 10, 5h - 3min, std::nullopt, std::nullopt},
        {"start ahead", 10, 6h, std::nullopt, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const UsageWindow window = reading(WindowKind::session(), c.used, c.resetsIn);
        const auto rate = VornEngine::localRate(window, {.activity = replies, .now = kNow, .epoch = c.epoch});
        ASSERT_EQ(rate.has_value(), c.perHour.has_value());
        EXPECT_NEAR(rate.value_or(0), c.perHour.value_or(0), 1e-9);
    }
    UsageWindow open = reading(WindowKind::session(), 50, 30min);
    open.resetsAt.reset();
    EXPECT_FALSE(VornEngine::localRate(open, {.activity = replies, .now = kNow, .epoch = std::nullopt}));
}

TEST(BurnRate, aFallOfTenPointsOpensAnEpoch) {
    const struct {
        const char* name;
        Course course;
        std::optional<WindowEpoch> epoch;
    } cases[] = {
        {"no readings", {}, std::nullopt},
        {"one reading", {{-1h, 50}}, std::nullopt},
        {"exactly ten", {{-2h, 50}, {-1h, 40}}, WindowEpoch{kNow - 1h, 40}},
        {"not quite ten", {{-2h, 50}, {-1h, 40.1}}, std::nullopt},
        {"only in steps", {{-3h, 50}, {-2h, 44}, {-1h, 38}}, std::nullopt},
        {"the last of two", {{-4h, 50}, {-3h, 5}, {-2h, 30}, {-1h, 0}}, WindowEpoch{kNow - 1h, 0}},
        {"given out of order", {{-1h, 40}, {-2h, 50}}, WindowEpoch{kNow - 1h, 40}},
        {"in order of time a rise", {{-1h, 50}, {-2h, 40}}, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(VornEngine::epoch(history(c.course)), c.epoch);
    }
}

TEST(BurnRate, slopeIsLeastSquaresOverDistinctTimes) {
    const struct {
        const char* name;
        Course course;
        Seconds minimumSpan;
        std::optional<double> slope;
    } cases[] = {
        {"no points", {}, 0s, std::nullopt},
        {"one time", {{-1h, 1}, {-1h, 2}}, 0s, std::nullopt},
        {"a line", {{-2h, 10}, {-1h, 15}, {0s, 20}}, 2h, 5},
        {"span too short", {{-2h, 10}, {-1h, 15}, {0s, 20}}, 2h + 1s, std::nullopt},
        {"around a line", {{-2h, 0}, {-1h, 6}, {0s, 6}}, 0s, 3},
        {"the later of one time", {{-1h, 10}, {0s, 90}, {-1h, 20}, {0s, 30}}, 0s, 10},
        {"falling", {{0s, 10}, {-1h, 20}}, 0s, -10},
        {"not finite", {{-1h, 10}, {-30min, kNan}, {0s, 20}, {Seconds{kNan}, 5}}, 0s, 10},
        {"overflow", {{-1h, -1e308}, {0s, 1e308}}, 0s, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<VornEngine::RatePoint> points;
        for (const auto& [time, value] : c.course) {
            points.push_back({kNow + time, value});
        }
        const auto slope = slopePerHour(points, c.minimumSpan);
        ASSERT_EQ(slope.has_value(), c.slope.has_value());
        EXPECT_NEAR(slope.value_or(0), c.slope.value_or(0), 1e-9);
    }
    std::vector<VornEngine::RatePoint> oneTime(5000, {kNow, 50});
    EXPECT_FALSE(slopePerHour(oneTime, 0s));
    oneTime.push_back({kNow + 1h, 60});
    EXPECT_NEAR(slopePerHour(oneTime, 0s).value_or(0), 10, 1e-9);
}

}  // namespace
}  // namespace vorn
