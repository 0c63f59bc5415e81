#include "core/analysis/steer.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;
using Direction = VornSteer::Direction;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const WindowKind kSession = WindowKind::session();
const WindowKind kWeek = WindowKind::week();
const WindowKind kOpus = WindowKind::weekModel("Opus");

VornSteer steerBy(double factor) {
    return {.kind = kSession, .factor = factor};
}

/// A window whose factor is `sustainable` / `rate`.
WindowAssessment assessed(const WindowKind& kind, double used, std::optional<double> sustainable,
                          std::optional<double> rate) {
    WindowAssessment assessment{.window = reading(kind, used, 1h)};
    assessment.sustainableRatePerHour = sustainable;
    assessment.ratePerHour = rate;
    assessment.rateBasis = RateBasis::recent;
    return assessment;
}

TEST(Steer, pointsByTheFactor) {
    const struct {
        double factor;
        Direction direction;
        double tilt;
        double angle;
    } cases[] = {
        {-1, Direction::stop, -1, -60},
        {0, Direction::stop, -1, -60},
        {0.01, Direction::easeOff, -1, -60},
        {0.25, Direction::easeOff, -1, -60},
        {0.5, Direction::easeOff, -0.5, -40},
        {0.999999, Direction::easeOff, 0, -20},
        {1, Direction::onPace, 0, 0},
        {1.249999, Direction::onPace, 0.160964, 0},
        {1.25, Direction::speedUp, 0.160964, 20},
        {2, Direction::speedUp, 0.5, 20 + 40 * 0.339036 / 0.839036},
        {4, Direction::speedUp, 1, 60},
        {100, Direction::speedUp, 1, 60},
        {kInfinity, Direction::speedUp, 1, 60},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.factor);
        EXPECT_EQ(steerBy(c.factor).direction(), c.direction);
        EXPECT_NEAR(steerBy(c.factor).tilt(), c.tilt, 1e-5);
        EXPECT_NEAR(steerBy(c.factor).angleDegrees(), c.angle, 1e-3);
    }
    EXPECT_EQ(steerBy(std::nan("")).tilt(), -1);
    EXPECT_EQ(steerBy(std::nan("")).angleDegrees(), -60);
}

TEST(Steer, angleRisesWithTheFactorAndIsLevelOrClearlyNot) {
    double last = -60;
    for (double factor = 0; factor < 6; factor += 0.001) {
        const double angle = steerBy(factor).angleDegrees();
        ASSERT_GE(angle, last) << factor;
        ASSERT_TRUE(angle == 0 || (std::abs(angle) >= 20 && std::abs(angle) <= 60)) << factor;
        last = angle;
    }
    EXPECT_EQ(last, 60);
}

TEST(Steer, followsTheTightestWindowThatIsNotLimited) {
    const WindowAssessment limited = assessed(kSession, 100, 0, 9);
    const WindowAssessment tight = assessed(kWeek, 50, 1, 2);
    const WindowAssessment roomy = assessed(kOpus, 50, 3, 2);
    const WindowAssessment idle = assessed(kSession, 0, 20, 0.01);
    const WindowAssessment unknown = assessed(kSession, 10, 20, std::nullopt);
    const struct {
        const char* name;
        std::vector<WindowAssessment> all;
        std::optional<WindowKind> kind;
        double factor;
    } cases[] = {
        {"nothing", {}, {}, 0},
        {"all limited", {limited}, {}, 0},
        {"rate unknown", {unknown}, {}, 0},
        {"smallest factor", {unknown, roomy, limited, tight, idle}, kWeek, 0.5},
        {"negligible rate", {idle}, kSession, kInfinity},
        {"a real rate", {assessed(kSession, 0, 20, 0.02)}, kSession, 1000},
        {"equal factors", {assessed(kOpus, 5, 1, 1), assessed(kWeek, 5, 2, 2), assessed(kOpus, 5, 3, 3)}, kWeek, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto steer = VornEngine::steer(c.all, std::nullopt, 0.1);
        ASSERT_EQ(steer.has_value(), c.kind.has_value());
        if (steer) {
            EXPECT_EQ(*steer, (VornSteer{.kind = *c.kind, .factor = c.factor, .basis = RateBasis::recent}));
        }
    }
    EXPECT_EQ(limited.steer()->direction(), Direction::stop);
}

TEST(Steer, staysWithTheLastWindowUntilAnotherIsClearlyTighter) {
    const struct {
        const char* name;
        double session;
        double week;
        std::optional<WindowKind> previous;
        WindowKind now;
    } cases[] = {
        {"slightly tighter", 1.0, 0.95, kSession, kSession}, {"at the margin", 1.0, 0.9, kSession, kSession},
        {"clearly tighter", 1.0, 0.89, kSession, kWeek},     {"no last window", 1.0, 0.99, std::nullopt, kWeek},
        {"last window gone", 1.0, 0.99, kOpus, kWeek},       {"both idle", kInfinity, kInfinity, kWeek, kWeek},
        {"no longer idle", kInfinity, 5, kSession, kWeek},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::vector all{assessed(kSession, 5, c.session, 1), assessed(kWeek, 5, c.week, 1)};
        const auto steer = VornEngine::steer(all, c.previous, 0.1);
        ASSERT_TRUE(steer);
        EXPECT_EQ(steer->kind, c.now);
    }
}

TEST(Steer, doesNotFlickerBetweenTwoWindowsAlike) {
    std::optional<WindowKind> previous;
    for (int i = 0; i < 100; ++i) {
        const std::vector all{assessed(kSession, 5, 1 + 0.05 * std::sin(i), 1),
                              assessed(kWeek, 5, 1 + 0.05 * std::cos(i), 1)};
        const auto steer = VornEngine::steer(all, previous, 0.1);
        ASSERT_TRUE(steer);
        ASSERT_TRUE(!previous || steer->kind == *previous);
        previous = steer->kind;
    }
}

}  // namespace
}  // namespace vorn
