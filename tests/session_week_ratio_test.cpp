#include "core/analysis/session_week_ratio.hpp"

#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;

struct Point {
    Seconds time;
    double used;
    std::optional<Seconds> resetsIn;  ///< Both relative to `kNow`.
};

void add(std::vector<HistorySample>& samples, const char* key, const std::vector<Point>& points) {
    for (const Point& point : points) {
        const auto reset = point.resetsIn ? std::optional<Instant>(kNow + *point.resetsIn) : std::nullopt;
        samples.push_back({key, point.used, reset, kNow + point.time});
    }
}

TEST(SessionWeekRatio, learnsFromSessionsWithTheWeekAlongside) {
    const std::vector<Point> session{{-2h, 10, 3h}, {-1h, 20, 3h + 299s}, {0s, 30, 3h}};
    const struct {
        const char* name;
        std::vector<Point> sessions;
        std::vector<Point> weeks;
        std::optional<SessionWeekRatio> ratio;  ///< With no minimum of session points.
    } cases[] = {
        {"at the same times", session, {{-2h, 50, 70h}, {0s, 52, 70h}}, {{0.1, 1, 20}}},
        {"interpolated", session, {{-3h, 50, 70h}, {-1h, 54, 70h}, {1h, 58, 70h}}, {{0.2, 1, 20}}},
        {"a gap of over two hours", session, {{-3h, 50, 70h}, {-1h + 1s, 54, 70h}, {1h, 58, 70h}}, {}},
        {"near by fifteen minutes", session, {{-135min, 50, 70h}, {15min, 56, 70h}}, {{0.3, 1, 20}}},
        {"a second further", session, {{-135min - 1s, 50, 70h}, {15min, 56, 70h}}, {}},
        {"equally near", session, {{-130min, 40, 70h}, {-110min, 50, 80h}, {0s, 60, 70h}}, {{1, 1, 20}}},
        {"week starts afresh", session, {{-2h, 90, -1h}, {0s, 2, 167h}}, {}},
        {"week reset unknown", session, {{-2h, 50, {}}, {0s, 52, {}}}, {}},
        {"week falls", session, {{-2h, 50, 70h}, {0s, 48, 70h}}, {{0, 1, 20}}},
        {"no week", session, {}, {}},
        {"rise of a point", {{-1h, 10, 3h}, {0s, 11, 3h}}, {{-1h, 50, 70h}, {0s, 51, 70h}}, {{1, 1, 1}}},
        {"less than a point", {{-1h, 10, 3h}, {0s, 10.9, 3h}}, {{-1h, 50, 70h}, {0s, 51, 70h}}, {}},
        {"session reset unknown", {{-1h, 10, {}}, {0s, 30, {}}}, {{-1h, 50, 70h}, {0s, 51, 70h}}, {}},
        {"two sessions",
         {{-10h, 0, -5h}, {-9h, 10, -5h}, {-1h, 10, 3h}, {0s, 40, 3h}},
         {{-10h, 10, 70h}, {-9h, 12, 70h}, {-1h, 20, 70h}, {0s, 22, 70h}},
         {{0.1, 2, 40}}},
        {"out of order", {{0s, 30, 3h}, {-2h, 10, 3h}}, {{0s, 52, 70h}, {-2h, 50, 70h}}, {{0.1, 1, 20}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<HistorySample> samples;
        add(samples, "week", c.weeks);
        add(samples, "session", c.sessions);
        add(samples, "week:Opus", {{-2h, 0, 70h}, {0s, 100, 70h}});
        const auto ratio = VornEngine::sessionWeekRatio(samples, 0.5);
        ASSERT_EQ(ratio.has_value(), c.ratio.has_value());
        if (ratio) {
            EXPECT_NEAR(ratio->weekPointsPerSessionPoint, c.ratio->weekPointsPerSessionPoint, 1e-9);
            EXPECT_EQ(ratio->sessions, c.ratio->sessions);
            EXPECT_EQ(ratio->sessionPoints, c.ratio->sessionPoints);
            EXPECT_EQ(VornEngine::sessionWeekRatio(samples, ratio->sessionPoints), ratio);
            EXPECT_FALSE(VornEngine::sessionWeekRatio(samples, ratio->sessionPoints + 0.1));
        }
    }
}

TEST(SessionWeekRatio, countsSessions) {
    const SessionWeekRatio tenth{.weekPointsPerSessionPoint = 0.1, .sessions = 3, .sessionPoints = 60};
    EXPECT_EQ(tenth.weekPercentPerSession(), 10);
    EXPECT_EQ(tenth.sessionsPerWeek(), 10);
    EXPECT_EQ(tenth.sessionsLeft(40), 6);
    EXPECT_EQ(tenth.sessionsLeft(100), 0);
    EXPECT_EQ(tenth.sessionsLeft(120), 0);
    const SessionWeekRatio free{.weekPointsPerSessionPoint = 0, .sessions = 3, .sessionPoints = 60};
    EXPECT_TRUE(std::isinf(free.sessionsPerWeek()) && std::isinf(free.sessionsLeft(40)));
}

}  // namespace
}  // namespace vorn
