#include "core/analysis/assess.hpp"

#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "core/analysis/rate_reading.hpp"
#include "core/analysis/steer.hpp"
#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;
using VornEngine::assess;

TEST(Assess, walksTheStatusesOnBothSides) {
    const WindowKind session = WindowKind::session();
    const WindowKind week = WindowKind::week();
    const Course rising{{-101h, 110}, {-100h, 98.5}};  // an epoch 100 hours ago
    const struct {
        const char* name;
        UsageWindow window;
        Course course;
        std::optional<Seconds> planned;
        VornStatus status;
        double projected;
        std::optional<Seconds> toLimit;
    } cases[] = {
        // Half of the session has passed: without history the rate is `used` / 2.5 h.
        {"below watch", reading(session, 42.4, 2.5h), {}, {}, VornStatus::comfortable, 84.8, {}},
        {"watch at 85", reading(session, 42.5, 2.5h), {}, {}, VornStatus::watch, 85, {}},
        {"just fits", reading(session, 50, 2.5h), {}, {}, VornStatus::watch, 100, {}},
        {"does not fit", reading(session, 60, 2.5h), {}, {}, VornStatus::atRisk, 120, 100min},
        {"nearly full", reading(session, 99.9, 2.5h), {}, {}, VornStatus::atRisk, 199.8, 2.5h / 999},
        {"full", reading(session, 100, 2.5h), {}, {}, VornStatus::limited, 200, {}},
        {"over full", reading(session, 130, 2.5h), {}, {}, VornStatus::limited, 260, {}},
        {"below nothing", reading(session, -10, 2.5h), {}, {}, VornStatus::comfortable, -10, {}},
        {"reset far away", reading(session, 10, 100h), {{-30min, 5}}, {}, VornStatus::atRisk, 1010, 9h},
        {"negligible rate", reading(week, 99.5, 60h), rising, {}, VornStatus::watch, 100.1, {}},
        {"barely a rate", reading(week, 99.51, 60h), rising, {}, VornStatus::atRisk, 100.116, 0.49h / 0.0101},
        {"cut short", reading(session, 60, 2.5h), {}, 1h, VornStatus::comfortable, 84, {}},
        {"cut short too late", reading(session, 60, 2.5h), {}, 2h, VornStatus::atRisk, 108, 100min},
        {"planned now", reading(session, 60, 2.5h), {}, 0s, VornStatus::atRisk, 120, 100min},
        {"planned at the reset", reading(session, 60, 2.5h), {}, 2.5h, VornStatus::atRisk, 120, 100min},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const MatchingSamples samples = history(c.course);
        const auto planned = c.planned ? std::optional<Instant>(kNow + *c.planned) : std::nullopt;
        const auto result = assess(c.window, {.history = samples, .now = kNow, .plannedResetAt = planned});
        EXPECT_STREQ(label(result.status), label(c.status));
        EXPECT_NEAR(result.projectedAtReset.value_or(0), c.projected, 1e-6);
        ASSERT_EQ(result.timeToLimit.has_value(), c.toLimit.has_value());
        EXPECT_NEAR(result.timeToLimit.value_or(0s) / 1s, c.toLimit.value_or(0s) / 1s, 1e-3);
    }
}

TEST(Assess, plansToThePlannedResetButCountsDownToTheRealOne) {
    const MatchingSamples none;
    const UsageWindow window = reading(WindowKind::session(), 60, 2.5h);
    const auto cut = assess(window, {.history = none, .now = kNow, .plannedResetAt = kNow + 1h});
    EXPECT_EQ(cut.horizon(), kNow + 1h);
    EXPECT_EQ(cut.timeToReset, 2.5h);
    EXPECT_NEAR(cut.evenPacePercent.value_or(0), 100 * 2.5 / 3.5, 1e-9);
    EXPECT_NEAR(cut.paceDelta().value_or(0), 60 - 100 * 2.5 / 3.5, 1e-9);
    EXPECT_EQ(cut.sustainableRatePerHour, 40.0);
    EXPECT_NEAR(cut.unusedAtReset().value_or(0), 16, 1e-9);
    const auto whole = assess(window, {.history = none, .now = kNow});
    EXPECT_EQ(whole.horizon(), window.resetsAt);
    EXPECT_EQ(whole.elapsedFraction, 0.5);
    EXPECT_EQ(whole.unusedAtReset(), 0.0);
}

TEST(Assess, withoutAFutureResetOnlyTheUsedPercentCounts) {
    const MatchingSamples samples = history({{-30min, 5}});
    UsageWindow open = reading(WindowKind::week(), 40, 1h);
    open.resetsAt.reset();
    UsageWindow broken = reading(WindowKind::week(), std::numeric_limits<double>::quiet_NaN(), 1h);
    UsageWindow never = reading(WindowKind::week(), 40, Seconds{std::numeric_limits<double>::infinity()});
    for (UsageWindow window : {open, reading(WindowKind::week(), 40, 0s), broken, never}) {
        for (const double used : {window.usedPercent, 100.0}) {
            if (std::isnan(window.usedPercent) && used == 100) {
                continue;
            }
            window.usedPercent = used;
            const auto result = assess(window, {.history = samples, .now = kNow, .plannedResetAt = kNow + 30min});
            EXPECT_EQ(result.status, used >= 100 ? VornStatus::limited : VornStatus::comfortable);
            EXPECT_FALSE(result.ratePerHour || result.projectedAtReset || result.timeToReset || result.plannedResetAt ||
                         result.evenPacePercent || result.sustainableRatePerHour);
            EXPECT_EQ(result.steer().has_value(), used >= 100);
        }
    }
}

TEST(Assess, headlineIsTheMostUrgent) {
    const auto one = [](VornStatus status, double used, std::optional<double> projected,
                        std::optional<Seconds> toLimit = {}) {
        WindowAssessment assessment{.window = reading(WindowKind::session(), used, 1h)};
        assessment.projectedAtReset = projected;
        assessment.timeToLimit = toLimit;
        assessment.status = status;
        return assessment;
    };
    using enum VornStatus;
    const struct {
        const char* name;
        std::vector<WindowAssessment> all;
        std::size_t best;
    } cases[] = {
        {"worse status", {one(watch, 90, 95), one(limited, 100, {}), one(atRisk, 99, 300, 60s)}, 1},
        {"sooner limit", {one(atRisk, 50, 300, 61s), one(atRisk, 10, 101, 60s)}, 1},
        {"equal limits", {one(atRisk, 50, 101, 60s), one(atRisk, 10, 300, 60s)}, 1},
        {"limit unknown", {one(atRisk, 50, 101, 60s), one(atRisk, 10, 102)}, 1},
        {"higher projection", {one(comfortable, 50, 60), one(comfortable, 10, 61)}, 1},
        {"used for projection", {one(comfortable, 50, 60), one(comfortable, 61, {})}, 1},
        {"equal projections", {one(comfortable, 50, 60), one(comfortable, 51, 60)}, 1},
        {"equal in all", {one(comfortable, 50, 60), one(comfortable, 50, 60)}, 0},
    };
    EXPECT_FALSE(VornEngine::headline({}));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(VornEngine::headline(c.all), c.all[c.best]);
    }
}

/// Whatever comes in: numbers are finite or absent, and they agree with each other.
TEST(Assess, anyInputGivesNumbersThatAgree) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<double> hostile{-infinity, -1e308, -5, 0, 99.9999, 100, 1e308, infinity, std::nan("")};
    std::mt19937 random(11);
    const auto upTo = [&](double limit) {
        return std::uniform_real_distribution<double>(0, limit)(random);
    };
    const auto percent = [&] {
        return upTo(4) < 1 ? hostile[static_cast<std::size_t>(upTo(8.99))] : upTo(110);
    };
    const auto span = [&](Seconds longest) {
        return upTo(8) < 1 ? Seconds{hostile[static_cast<std::size_t>(upTo(8.99))]} : longest * (upTo(1.2) - 0.1);
    };
    const auto isSound = [](std::optional<double> value, double least) {
        return !value || (std::isfinite(*value) && *value >= least);
    };
    const ActivitySummary replies = activity({{-4h, 100}, {-2h, 1}, {-9min, 1 << 30}, {5min, 40}});
    for (int i = 0; i < 5000; ++i) {
        const WindowKind kind = i % 2 == 0 ? WindowKind::session() : WindowKind::week();
        const UsageWindow window = reading(kind, percent(), span(kind.length()));
        Course course;
        for (double count = upTo(6); count > 1; --count) {
            course.emplace_back(-span(kind.length() / 4), percent());
        }
        const MatchingSamples samples = history(course);
        const auto result = assess(window, {.history = samples,
                                            .activity = i % 3 == 0 ? &replies : nullptr,
                                            .now = kNow,
                                            .plannedResetAt = kNow + span(kind.length())});
        ASSERT_TRUE(isSound(result.ratePerHour, 0) && isSound(result.sustainableRatePerHour, 0));
        ASSERT_TRUE(isSound(result.projectedAtReset, -infinity) && isSound(result.elapsedFraction, 0));
        ASSERT_TRUE(!result.timeToLimit || isSound(*result.timeToLimit / 1s, 0));
        ASSERT_EQ(result.status == VornStatus::limited, window.usedPercent >= 100);
        const double projected = result.projectedAtReset.value_or(100);
        if (window.usedPercent < 100 && std::abs(projected - 100) > 1e-6 &&
            result.ratePerHour > kNegligibleRatePerHour) {
            ASSERT_EQ(result.timeToLimit.has_value(), projected > 100);
        }
        for (const RateReading& rate : VornEngine::rates(window, samples, &replies, kNow)) {
            ASSERT_TRUE(isSound(rate.ratePerHour, 0));
        }
        const auto steer = VornEngine::steer(std::vector{result}, std::nullopt, 0.1);
        ASSERT_TRUE(!steer || (steer->factor > 0 && window.usedPercent < 100));
    }
}

}  // namespace
}  // namespace vorn
