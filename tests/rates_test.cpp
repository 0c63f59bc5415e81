#include <gtest/gtest.h>

#include "core/analysis/rate_reading.hpp"
#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;

using Rates = std::array<double, RateReading::allHorizons.size()>;

TEST(Rates, readsEveryHorizonByItsOwnRule) {
    const WindowKind session = WindowKind::session();
    const WindowKind week = WindowKind::week();
    const ActivitySummary busy = activity({{-60h, 200}, {-10min, 100}});
    constexpr double none = -1;
    UsageWindow open = reading(week, 30, 1h);
    open.resetsAt.reset();
    const std::tuple<const char*, UsageWindow, Course, Rates> cases[] = {
        {"no history", reading(week, 42, 84h), {}, {42, none, none, none, 0.5}},
        {"one course", reading(week, 42, 84h), {{-20h, 22}, {-4h, 38}, {-30min, 41.5}}, {42, 1, 1, 1, 0.5}},
        {"a quarter hour", reading(week, 42, 84h), {{-15min, 41}}, {42, 4, none, none, 0.5}},
        {"under a quarter hour", reading(week, 42, 84h), {{-15min + 1s, 41}}, {42, none, none, none, 0.5}},
        {"an hour", reading(week, 42, 84h), {{-1h, 40}}, {42, 2, 2, none, 0.5}},
        {"six hours", reading(week, 42, 84h), {{-6h, 36}}, {42, none, none, 1, 0.5}},
        {"a day", reading(week, 42, 84h), {{-24h, 18}}, {42, none, none, 1, 0.5}},
        {"more than a day", reading(week, 42, 84h), {{-24h - 1s, 18}}, {42, none, none, none, 0.5}},
        {"falling", reading(week, 42, 84h), {{-30min, 45}}, {42, 0, none, none, 0.5}},
        {"an epoch", reading(week, 42, 84h), {{-90min, 60}, {-30min, 40}}, {none, 4, none, none, 4}},
        {"ten minutes old", reading(session, 2, 5h - 10min), {}, {none, none, none, none, 12}},
        {"younger", reading(session, 2, 5h - 10min + 1s), {}, {none, none, none, none, none}},
        {"no reset time", open, {{-30min, 25}}, {none, 10, none, none, none}},
        {"epoch without a reset time", open, {{-2h, 60}, {-1h, 20}}, {none, 10, 10, none, 10}},
    };
    for (const auto& [name, window, course, rates] : cases) {
        SCOPED_TRACE(name);
        const auto readings = VornEngine::rates(window, history(course), &busy, kNow);
        ASSERT_EQ(readings.size(), rates.size());
        for (std::size_t i = 0; i < readings.size(); ++i) {
            SCOPED_TRACE(rawValue(readings[i].horizon));
            EXPECT_EQ(readings[i].horizon, RateReading::allHorizons[i]);
            EXPECT_NEAR(readings[i].ratePerHour.value_or(-1), rates[i], 1e-9);
        }
    }
    EXPECT_FALSE(VornEngine::rates(reading(week, 42, 84h), {}, nullptr, kNow).front().ratePerHour);
}

/// The window's own reading counts for a horizon only while it is recent enough.
TEST(Rates, anOldReadingLeavesTheShortHorizonsEmpty) {
    UsageWindow stale = reading(WindowKind::week(), 42, 84h);
    stale.observedAt -= 2h;
    const auto readings = VornEngine::rates(stale, history({{-4h, 40}}), nullptr, kNow);
    EXPECT_FALSE(readings[1].ratePerHour);
    EXPECT_NEAR(readings[2].ratePerHour.value_or(0), 1, 1e-9);
}

}  // namespace
}  // namespace vorn
