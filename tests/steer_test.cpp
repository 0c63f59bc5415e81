#include "core/analysis/steer.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;

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
    using enum VornSteer::Direction;
    const std::tuple<double, VornSteer::Direction, double, double> cases[] = {
        {0, stop, -1, -60},
        {0.25, easeOff, -1, -60},
        {0.5, easeOff, -0.5, -40},
        {0.999999, easeOff, 0, -20},
        {1, onPace, 0, 0},
        {1.249999, onPace, 0.160964, 0},
        {1.25, speedUp, 0.160964, 20},
        {2, speedUp, 0.5, 20 + 40 * 0.339036 / 0.839036},
        {4, speedUp, 1, 60},
        {kInfinity, speedUp, 1, 60},
    };
    for (const auto& [factor, direction, tilt, angle] : cases) {
        SCOPED_TRACE(factor);
        EXPECT_EQ(steerBy(factor).direction(), direction);
        EXPECT_NEAR(steerBy(factor).tilt(), tilt, 1e-5);
        EXPECT_NEAR(steerBy(factor).angleDegrees(), angle, 1e-3);
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
    const WindowAssessment unknown = assessed(kSession, 10, 20, std::nullopt);
    const auto steer = [](const std::vector<WindowAssessment>& all) {
        return VornEngine::steer(all, std::nullopt, 0.1);
    };
    const auto by = [](const WindowKind& kind, double factor) {
        return VornSteer{.kind = kind, .factor = factor, .basis = RateBasis::recent};
    };
    EXPECT_FALSE(steer({}) || steer({limited}) || steer({unknown}));
    EXPECT_EQ(steer({unknown, assessed(kOpus, 50, 3, 2), limited, assessed(kWeek, 50, 1, 2)}), by(kWeek, 0.5));
    EXPECT_EQ(steer({assessed(kOpus, 5, 1, 1), assessed(kWeek, 5, 2, 2), assessed(kOpus, 5, 3, 3)}), by(kWeek, 1));
    EXPECT_EQ(steer({assessed(kSession, 0, 20, 0.01)}), by(kSession, kInfinity));
    EXPECT_EQ(steer({assessed(kSession, 0, 20, 0.02)}), by(kSession, 1000));
    EXPECT_EQ(limited.steer(), by(kSession, 0));
}

TEST(Steer, staysWithTheLastWindowUntilAnotherIsClearlyTighter) {
    const std::tuple<double, double, std::optional<WindowKind>, WindowKind> cases[] = {
        {1, 0.95, kSession, kSession}, {1, 0.9, kSession, kSession},         {1, 0.89, kSession, kWeek},
        {1, 0.99, {}, kWeek},          {kInfinity, kInfinity, kWeek, kWeek}, {kInfinity, 5, kSession, kWeek},
        {1, 0.99, kOpus, kWeek},  // the last window is gone
    };
    for (const auto& [session, week, previous, now] : cases) {
        const std::vector all{assessed(kSession, 5, session, 1), assessed(kWeek, 5, week, 1)};
        EXPECT_EQ(VornEngine::steer(all, previous, 0.1)->kind, now) << session << ' ' << week;
    }
}

}  // namespace
}  // namespace vorn
