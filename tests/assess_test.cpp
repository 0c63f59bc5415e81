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
    using enum VornStatus;
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
        Seconds toLimit;  ///< 0 for none.
    } cases[] = {
        // Half of the session has passed: without history the rate is `used` / 2.5 h.
        {"below watch", reading(session, 42.4, 2.5h), {}, {}, comfortable, 84.8, 0s},
        {"watch at 85", reading(session, 42.5, 2.5h), {}, {}, watch, 85, 0s},
        {"just fits", reading(session, 50, 2.5h), {}, {}, watch, 100, 0s},
        {"does not fit", reading(session, 60, 2.5h), {}, {}, atRisk, 120, 100min},
        {"nearly full", reading(session, 99.9, 2.5h), {}, {}, atRisk, 199.8, 2.5h / 999},
        {"full", reading(session, 100, 2.5h), {}, {}, limited, 200, 0s},
        {"below nothing", reading(session, -10, 2.5h), {}, {}, comfortable, -10, 0s},
        {"reset far away", reading(session, 10, 100h), {{-30min, 5}}, {}, atRisk, 1010, 9h},
        {"negligible rate", reading(week, 99.5, 60h), rising, {}, watch, 100.1, 0s},
        {"barely a rate", reading(week, 99.51, 60h), rising, {}, atRisk, 100.116, 0.49h / 0.0101},
        {"cut short", reading(session, 60, 2.5h), {}, 1h, comfortable, 84, 0s},
        {"cut short too late", reading(session, 60, 2.5h), {}, 2h, atRisk, 108, 100min},
        {"planned now", reading(session, 60, 2.5h), {}, 0s, atRisk, 120, 100min},
        {"planned at the reset", reading(session, 60, 2.5h), {}, 2.5h, atRisk, 120, 100min},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const MatchingSamples samples = history(c.course);
        const auto planned = c.planned ? std::optional<Instant>(kNow + *c.planned) : std::nullopt;
        const auto result = assess(c.window, {.history = samples, .now = kNow, .plannedResetAt = planned});
        EXPECT_STREQ(label(result.status), label(c.status));
        EXPECT_NEAR(result.projectedAtReset.value_or(0), c.projected, 1e-6);
        EXPECT_NEAR(result.timeToLimit.value_or(0s) / 1s, c.toLimit / 1s, 1e-3);
    }
}

TEST(Assess, plansToThePlannedResetButCountsDownToTheRealOne) {
    const UsageWindow window = reading(WindowKind::session(), 60, 2.5h);
    const auto cut = assess(window, {.history = {}, .now = kNow, .plannedResetAt = kNow + 1h});
    EXPECT_EQ(cut.horizon(), kNow + 1h);
    EXPECT_EQ(cut.timeToReset, 2.5h);
    EXPECT_NEAR(cut.evenPacePercent.value_or(0), 100 * 2.5 / 3.5, 1e-9);
    EXPECT_NEAR(cut.paceDelta().value_or(0), 60 - 100 * 2.5 / 3.5, 1e-9);
    EXPECT_EQ(cut.sustainableRatePerHour, 40);
    EXPECT_NEAR(cut.unusedAtReset().value_or(0), 16, 1e-9);
    const auto whole = assess(window, {.history = {}, .now = kNow});
    EXPECT_EQ(whole.horizon(), window.resetsAt);
    EXPECT_EQ(whole.unusedAtReset(), 0);
}

TEST(Assess, withoutAFutureResetOnlyTheUsedPercentCounts) {
    const MatchingSamples samples = history({{-30min, 5}});
    UsageWindow open = reading(WindowKind::week(), 40, 1h);
    open.resetsAt.reset();
    const Seconds never{std::numeric_limits<double>::infinity()};
    for (UsageWindow window : {open, reading(WindowKind::week(), 40, 0s), reading(WindowKind::week(), 40, never)}) {
        for (const double used : {40.0, 99.9, 100.0, 120.0, std::nan("")}) {
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
    const std::pair<const char*, std::vector<WindowAssessment>> cases[] = {
        // the best comes last
        {"worse status", {one(watch, 90, 95), one(atRisk, 99, 300, 60s), one(limited, 100, {})}},
        {"sooner limit", {one(atRisk, 50, 300, 61s), one(atRisk, 10, 101, 60s)}},
        {"equal limits", {one(atRisk, 50, 101, 60s), one(atRisk, 10, 300, 60s)}},
        {"limit unknown", {one(atRisk, 50, 101, 60s), one(atRisk, 10, 102)}},
        {"higher projection", {one(comfortable, 50, 60), one(comfortable, 10, 61)}},
        {"used for projection", {one(comfortable, 50, 60), one(comfortable, 61, {})}},
        {"equal projections", {one(comfortable, 50, 60), one(comfortable, 51, 60)}},
    };
    for (const auto& [name, all] : cases) {
        EXPECT_EQ(VornEngine::headline(all), all.back()) << name;
        EXPECT_EQ(VornEngine::headline(std::vector(all.rbegin(), all.rend())), all.back()) << name;
    }
    EXPECT_FALSE(VornEngine::headline({}));
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
