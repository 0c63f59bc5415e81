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

TEST(Format, writesNumbers) {
    const auto session = [](double value) {
        return Format::rate(value, WindowKind::session());
    };
    const auto week = [](double value) {
        return Format::rate(value, WindowKind::week());
    };
    const auto perHour = [](double value) {
        return Format::rate(value);
    };
    const auto duration = [](double value) {
        return Format::duration(Seconds{value});
    };
    const auto factor = [](double value) {
        return Format::factor(steerBy(value));
    };
    const struct {
        std::string (*format)(double);
        std::vector<std::pair<double, const char*>> texts;
    } cases[] = {
        {Format::percent,
         {{42.5, "43%"}, {42.4, "42%"}, {-0.4, "0%"}, {-0.0, "0%"}, {-2.5, "-3%"}, {130, "130%"}, {kNan, "—%"}}},
        {duration,
         {{29, "<1m"},
          {30, "1m"},
          {3569, "59m"},
          {3570, "1h"},
          {3600, "1h"},
          {5400, "1h 30m"},
          {7200, "2h"},
          {86369, "23h 59m"},
          {86370, "1d"},
          {88200, "1d"},
          {89999, "1d 1h"},
          {107940, "1d 5h"},
          {604800, "7d"},
          {-500, "<1m"},
          {kNan, "—"},
          {-kInfinity, "<1m"},
          {1e12, "11574074d 1h"}}},
        {Format::multiplier,
         {{2.35, "2.4×"}, {0.64, "0.6×"}, {0.25, "0.2×"}, {9.96, "10.0×"}, {12.5, "13×"}, {-0.01, "0.0×"}}},
        {factor,
         {{0, "■"},
          {-1, "■"},
          {0.64, "↓0.6×"},
          {0.999, "↓1.0×"},
          {1, "→"},
          {1.249, "→"},
          {1.25, "↑1.2×"},
          {1.84, "↑1.8×"},
          {3.999, "↑4.0×"},
          {4, "↑"},
          {kInfinity, "↑"}}},
        {Format::sessionsLeft,
         {{6.54, "6.5×5h"}, {0, "0.0×5h"}, {10, "10×5h"}, {12.5, "12×5h"}, {kInfinity, "∞×5h"}, {kNan, "∞×5h"}}},
        {Format::times, {{0.5, "×0.50"}, {1, "×1.0"}, {1.84, "×1.8"}, {4, "×4+"}, {kInfinity, "idle"}, {kNan, "idle"}}},
        {perHour,
         {{35, "35%/h"},
          {34.5, "35%/h"},
          {9.96, "10%/h"},
          {9.94, "9.9%/h"},
          {4.04, "4%/h"},
          {0.4, "0.4%/h"},
          {0.05, "0.1%/h"},
          {0.04, "<0.1%/h"},
          {0, "0%/h"},
          {-5, "0%/h"},
          {kInfinity, "—"}}},
        {session, {{35, "35%/h"}}},
        {week, {{0.46, "11%/day"}, {0.05, "1.2%/day"}, {0, "0%/day"}, {kNan, "—"}}},
    };
    for (const auto& c : cases) {
        for (const auto& [value, text] : c.texts) {
            EXPECT_EQ(c.format(value), text) << value;
        }
    }
}

TEST(Format, writesSteering) {
    const std::pair<double, const char*> headlines[] = {
        {0, "Limit reached — pause until it resets"},
        {0.64, "Ease off to 64% of your current pace"},
        {1, "Right on pace — keep going"},
        {1.24, "Right on pace — keep going"},
        {1.25, "Room to speed up 1.2×"},
        {1.84, "Room to speed up 1.8×"},
        {3.99, "Room to speed up 4.0×"},
        {4, "Plenty of room to speed up"},
        {kInfinity, "Idle — plenty of room"},
        {kNan, "Idle — plenty of room"},
    };
    for (const auto& [factor, text] : headlines) {
        EXPECT_EQ(Format::steerHeadline(steerBy(factor)), text) << factor;
    }
    EXPECT_EQ(Format::steerReason(steerBy(1)), "Session (5h) is the tight one");
    EXPECT_EQ(Format::steerReason(steerBy(1, WindowKind::week())), "Week (7d) is the tight one");
    EXPECT_EQ(Format::steerReason(steerBy(1, WindowKind::weekModel("Opus"))), "Week · Opus is the tight one");
}

struct VerdictCase {
    const char* text;
    VornStatus status;
    double used = 40;
    std::optional<Seconds> resetsIn = 2h;
    std::optional<double> rate{};
    std::optional<double> projected{};
    std::optional<Seconds> toLimit{};
    std::optional<Seconds> planned{};
};

WindowAssessment assessmentOf(const VerdictCase& c) {
    WindowAssessment assessment{.window = reading(WindowKind::session(), c.used, c.resetsIn.value_or(0s))};
    if (!c.resetsIn) {
        assessment.window.resetsAt.reset();
    }
    assessment.status = c.status;
    assessment.ratePerHour = c.rate;
    assessment.projectedAtReset = c.projected;
    assessment.timeToLimit = c.toLimit;
    if (c.planned) {
        assessment.plannedResetAt = kNow + *c.planned;
    }
    return assessment;
}

TEST(Format, writesVerdictsInTheUsersTime) {
    const ScopedEnvironment zone("TZ", "Europe/Berlin");
    const ScopedEnvironment locale("LC_ALL", "C");
    using enum VornStatus;
    const VerdictCase cases[] = {
        {.text = "Lands around 60% at reset", .status = comfortable, .rate = 10, .projected = 60},
        {.text = "Plenty of room", .status = comfortable},
        {.text = "Idle · nothing burning", .status = comfortable, .rate = 0, .projected = 40},
        {.text = "Not started", .status = comfortable, .used = 0, .resetsIn = {}},
        {.text = "Plenty of room", .status = comfortable, .used = 0.1, .resetsIn = {}},
        {.text = "Not started", .status = comfortable, .used = 0, .resetsIn = 5h + 1s, .rate = 0, .projected = 0},
        {.text = "Idle · nothing burning", .status = comfortable, .used = 0, .resetsIn = 5h, .rate = 0, .projected = 0},
        {.text = "Lands near 99% at reset", .status = watch, .rate = 10, .projected = 130},
        {.text = "Lands near 86% at reset", .status = watch, .rate = 10, .projected = 85.5},
        {.text = "Running warm", .status = watch},
        {.text = "Limit in ~1h 5m at this pace", .status = atRisk, .rate = 10, .projected = 130, .toLimit = 65min},
        {.text = "On track to hit the limit", .status = atRisk},
        {.text = "Limit reached · back at 15:00", .status = limited, .used = 100},
        {.text = "Limit reached · back at Mon 13:00", .status = limited, .used = 100, .resetsIn = 24h},
        {.text = "Limit reached · back at 14:00", .status = limited, .used = 100, .planned = 1h},
        {.text = "Limit reached", .status = limited, .used = 100, .resetsIn = {}},
        {.text = "Limit reached", .status = limited, .used = 100, .resetsIn = -1h},
        {.text = "Idle · 60% unused at the planned reset 14:00",
         .status = comfortable,
         .rate = 0,
         .projected = 40,
         .planned = 1h},
        {.text = "6% unused at the planned reset 14:00", .status = watch, .rate = 10, .projected = 94.4, .planned = 1h},
        {.text = "Uses it up by the planned reset 14:00", .status = watch, .rate = 10, .projected = 95, .planned = 1h},
        {.text = "Plenty of room", .status = comfortable, .rate = 10, .planned = 1h},
        {.text = "Limit in ~5m at this pace",
         .status = atRisk,
         .rate = 10,
         .projected = 130,
         .toLimit = 5min,
         .planned = 1h},
    };
    for (const VerdictCase& c : cases) {
        EXPECT_EQ(Format::verdict(assessmentOf(c), kNow), c.text);
    }
    EXPECT_EQ(Format::clock(kNow + 11h - 1s, kNow), "23:59");
    EXPECT_EQ(Format::clock(kNow + 11h, kNow), "Mon 00:00");
    EXPECT_EQ(Format::clock(Instant{Seconds{kInfinity}}, kNow), "—");
    const ScopedEnvironment american("LC_ALL", "en_US.UTF-8");
    EXPECT_EQ(Format::clock(kNow + 11h, kNow), "Mon 12:00\u202fAM");
}

TEST(Format, theHeadNeverPromisesRoomAtALimit) {
    const auto limited = assessmentOf({.text = "", .status = VornStatus::limited, .used = 100});
    const auto calm = assessmentOf({.text = "", .status = VornStatus::comfortable, .rate = 10, .projected = 60});
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
