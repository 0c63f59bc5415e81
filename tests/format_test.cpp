#include "ui/format/format.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"
#include "tests/support/temporary_directory.hpp"
#include "ui/format/head.hpp"

namespace vorn {
namespace {

using namespace test;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

VornSteer steerBy(double factor, const WindowKind& kind = WindowKind::session()) {
    return {.kind = kind, .factor = factor};
}

template <typename Formatter>
std::string texts(Formatter formatter, const std::vector<double>& values) {
    std::string all;
    for (const double value : values) {
        all += (all.empty() ? "" : " | ") + formatter(value);
    }
    return all;
}

TEST(Format, writesNumbers) {
    EXPECT_EQ(texts(Format::percent, {42.5, 42.4, -0.4, -0.0, -2.5, 130, kNan}),
              "43% | 42% | 0% | 0% | -3% | 130% | —%");
    EXPECT_EQ(
        texts([](double s) { return Format::duration(Seconds{s}); },
              {29, 30, 3569, 3570, 3600, 5400, 7200, 86369, 86370, 88200, 89999, 107940, 604800, -500, kNan, 1e12}),
        "<1m | 1m | 59m | 1h | 1h | 1h 30m | 2h | 23h 59m | 1d | 1d | 1d 1h | 1d 5h | 7d | <1m | — | 11574074d 1h");
    EXPECT_EQ(texts(Format::multiplier, {2.35, 0.64, 0.25, 9.96, 12.5, -0.01}),
              "2.4× | 0.6× | 0.2× | 10.0× | 13× | 0.0×");
    EXPECT_EQ(texts([](double factor) { return Format::factor(steerBy(factor)); },
                    {0, -1, 0.64, 0.999, 1, 1.249, 1.25, 1.84, 3.999, 4, kInfinity}),
              "■ | ■ | ↓0.6× | ↓1.0× | → | → | ↑1.2× | ↑1.8× | ↑4.0× | ↑ | ↑");
    EXPECT_EQ(texts(Format::sessionsLeft, {6.54, 0, 10, 12.5, kInfinity, kNan}),
              "6.5×5h | 0.0×5h | 10×5h | 12×5h | ∞×5h | ∞×5h");
    EXPECT_EQ(texts(Format::times, {0.5, 1, 1.84, 4, kInfinity, kNan}), "×0.50 | ×1.0 | ×1.8 | ×4+ | idle | idle");
    EXPECT_EQ(texts([](double rate) { return Format::rate(rate, WindowKind::session()); },
                    {35, 34.5, 9.96, 9.94, 4.04, 0.4, 0.05, 0.04, 0, -5, kInfinity}),
              "35%/h | 35%/h | 10%/h | 9.9%/h | 4%/h | 0.4%/h | 0.1%/h | <0.1%/h | 0%/h | 0%/h | —");
    EXPECT_EQ(texts([](double rate) { return Format::rate(rate, WindowKind::week()); }, {0.46, 0.05, 0, kNan}),
              "11%/day | 1.2%/day | 0%/day | —");
}

TEST(Format, writesSteering) {
    const std::pair<double, const char*> headlines[] = {{0, "Limit reached — pause until it resets"},
                                                        {0.64, "Ease off to 64% of your current pace"},
                                                        {1, "Right on pace — keep going"},
                                                        {1.24, "Right on pace — keep going"},
                                                        {1.25, "Room to speed up 1.2×"},
                                                        {3.99, "Room to speed up 4.0×"},
                                                        {4, "Plenty of room to speed up"},
                                                        {kInfinity, "Idle — plenty of room"},
                                                        {kNan, "Idle — plenty of room"}};
    for (const auto& [factor, text] : headlines) {
        EXPECT_EQ(Format::steerHeadline(steerBy(factor)), text) << factor;
    }
    EXPECT_EQ(Format::steerReason(steerBy(1, WindowKind::weekModel("Opus"))), "Week · Opus is the tight one");
}

/// A session that is `used` and resets at the given time from now (never at 0), with what was made of it.
struct Session {
    VornStatus status;
    double used;
    Seconds resetsIn;
    std::optional<double> rate;
    std::optional<double> projected;
    std::optional<Seconds> toLimit;
    std::optional<Seconds> planned;
};

WindowAssessment assessmentOf(const Session& session) {
    WindowAssessment assessment{.window = reading(WindowKind::session(), session.used, session.resetsIn)};
    if (session.resetsIn == 0s) {
        assessment.window.resetsAt.reset();
    }
    assessment.status = session.status;
    assessment.ratePerHour = session.rate;
    assessment.projectedAtReset = session.projected;
    assessment.timeToLimit = session.toLimit;
    assessment.plannedResetAt = session.planned ? std::optional<Instant>(kNow + *session.planned) : std::nullopt;
    return assessment;
}

TEST(Format, writesVerdictsInTheUsersTime) {
    const ScopedEnvironment zone("TZ", "Europe/Berlin");
    const ScopedEnvironment locale("LC_ALL", "C");
    using enum VornStatus;
    const std::pair<Session, const char*> cases[] = {
        {{comfortable, 40, 2h, 10, 60}, "Lands around 60% at reset"},
        {{comfortable, 40, 2h}, "Plenty of room"},
        {{comfortable, 40, 2h, 0, 40}, "Idle · nothing burning"},
        {{comfortable, 0, 0s}, "Not started"},
        {{comfortable, 0, 5h + 1s, 0, 0}, "Not started"},
        {{comfortable, 0, 5h, 0, 0}, "Idle · nothing burning"},
        {{watch, 40, 2h, 10, 130}, "Lands near 99% at reset"},
        {{watch, 40, 2h}, "Running warm"},
        {{atRisk, 40, 2h, 10, 130, 65min}, "Limit in ~1h 5m at this pace"},
        {{atRisk, 40, 2h}, "On track to hit the limit"},
        {{limited, 100, 2h}, "Limit reached · back at 15:00"},
        {{limited, 100, 2h, 10, 130, {}, 1h}, "Limit reached · back at 14:00"},
        {{limited, 100, 0s}, "Limit reached"},
        {{comfortable, 40, 2h, 0, 40, {}, 1h}, "Idle · 60% unused at the planned reset 14:00"},
        {{watch, 40, 2h, 10, 94.4, {}, 1h}, "6% unused at the planned reset 14:00"},
        {{watch, 40, 2h, 10, 95, {}, 1h}, "Uses it up by the planned reset 14:00"},
        {{comfortable, 40, 2h, {}, {}, {}, 1h}, "Plenty of room"},
        {{atRisk, 40, 2h, 10, 130, 5min, 1h}, "Limit in ~5m at this pace"},
    };
    for (const auto& [session, text] : cases) {
        EXPECT_EQ(Format::verdict(assessmentOf(session), kNow), text);
    }
    EXPECT_EQ(Format::clock(kNow + 11h - 1s, kNow), "23:59");
    EXPECT_EQ(Format::clock(kNow + 11h, kNow), "Mon 00:00");
    EXPECT_EQ(Format::clock(Instant{Seconds{kInfinity}}, kNow), "—");
    const ScopedEnvironment american("LC_ALL", "en_US.UTF-8");
    EXPECT_EQ(Format::clock(kNow + 11h, kNow), "Mon 12:00\u202fAM");
}

TEST(Format, theHeadNeverPromisesRoomAtALimit) {
    const auto limited = assessmentOf({VornStatus::limited, 100, 2h});
    const auto calm = assessmentOf({VornStatus::comfortable, 40, 2h, 10, 60});
    const VornSteer room = steerBy(1.84, WindowKind::week());
    EXPECT_EQ(Format::head(limited, room, kNow)->headline, "Limit reached — pause until it resets");
    EXPECT_EQ(Format::head(limited, room, kNow)->reason, "Session (5h) is the tight one");
    EXPECT_EQ(Format::head(calm, room, kNow),
              (Format::Head{"Room to speed up 1.8×", "Week (7d) is the tight one", room}));
    EXPECT_EQ(Format::head(calm, std::nullopt, kNow), (Format::Head{"Lands around 60% at reset", "", std::nullopt}));
    EXPECT_FALSE(Format::head(std::nullopt, std::nullopt, kNow));
}

}  // namespace
}  // namespace vorn
