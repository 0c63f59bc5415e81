#include "core/wording/format.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "core/wording/answer_text.hpp"
#include "core/wording/failure_text.hpp"
#include "core/wording/head.hpp"
#include "core/wording/window_text.hpp"
#include "tests/support/readings.hpp"
#include "tests/support/temporary_directory.hpp"

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

TEST(Format, writesAmountsOnOneScale) {
    EXPECT_EQ(
        texts(Format::tokens, {0, 560, 999.4, 999.5, 1500, 9949, 9950, 34499, 999499, 999500, 1250000, 2.5e9, 4e12}),
        "0 | 560 | 999 | 1.0k | 1.5k | 9.9k | 10k | 34k | 999k | 1.0M | 1.3M | 2.5G | 4000G");
    EXPECT_EQ(texts(Format::tokens, {-5, kNan, kInfinity}), "0 | — | —");
    EXPECT_EQ(texts(Format::sessions, {6.54, 10, 12.3, kInfinity}), "6.5 | 10 | 12 | ∞");
    EXPECT_EQ(texts([](double s) { return Format::spokenDuration(Seconds{s}); }, {20, 60, 4500, 7200, 90061, kNan}),
              "less than a minute | 1 minute | 1 hour 15 minutes | 2 hours | 1 day 1 hour | less than a minute");
    // Beside "Ease off to 1%" no factor says that nothing is left.
    EXPECT_EQ(texts([](double factor) { return Format::shortFactor(steerBy(factor)); }, {0, 0.01, 0.06, 0.5, 1, 2}),
              "■ | ↓ | ↓0.1× | ↓0.5× | → | ↑2.0×");
    EXPECT_EQ(texts([](double rate) { return Format::room(rate, 10); }, {0, 0.01, 5, 20, 9000, kNan}),
              "idle | idle | ×2.0 | ×0.50 |  | idle");
    EXPECT_EQ(Format::room(5, 0), "");
}

TEST(Format, saysOfAWindowWhatIsKnown) {
    const ScopedEnvironment zone("TZ", "UTC");
    const ScopedEnvironment locale("LC_ALL", "C");
    auto window = assessmentOf({VornStatus::atRisk, 72, 2h, 26, 124, 65min});
    window.timeToReset = 2h;
    window.evenPacePercent = 60;
    window.rateBasis = RateBasis::localActivity;
    EXPECT_EQ(Format::resetText(window, kNow).text(), "Resets in 2h · 14:00");
    EXPECT_EQ(Format::resetText(window, kNow).pieces.at(1), (Format::Phrase::Piece{"2h", true}));
    EXPECT_EQ(Format::paceText(window).text(), "26%/h from local activity · 12 points ahead of even pace");
    EXPECT_EQ(Format::windowLine(window, kNow), "Session 72% · Limit in ~1h 5m at this pace · resets in 2h");
    EXPECT_EQ(Format::windowLine(window, kNow, false), "Session 72% · resets in 2h");
    EXPECT_EQ(Format::spokenWindow(window, kNow),
              "Session, at risk, 72% used, Limit in about 1 hour 5 minutes at this pace, resets in 2 hours, at 14:00, "
              "26%/h from local activity, 12 points ahead of even pace");
    window.ratePerHour.reset();
    EXPECT_EQ(Format::rateText(window).text(), "No rate yet");
}

TEST(Format, saysHowTheAnswerCameAbout) {
    const ScopedEnvironment zone("TZ", "UTC");
    const ScopedEnvironment locale("LC_ALL", "C");
    using Kind = ProbeFailure::Kind;
    auto line = reading(WindowKind::session(), 40, 2h);
    line.source = DataSource::statusLine;
    const auto failed = [](Kind kind, std::string detail = {}) {
        return Asking{.lastAt = kNow, .failure = ProbeFailure{kind, std::move(detail)}};
    };
    const struct {
        Evidence evidence;
        const char* freshness;
        const char* title;
        const char* remedy;
        const char* tooltip;  ///< Its first line.
    } cases[] = {
        {{}, "", "No reading yet", "", "No reading yet"},
        {{.asking = {.isRunning = true}}, "Asking claude /usage…", "Reading your usage…", "", "Reading your usage…"},
        {{.asking = {.hasAnswered = true, .lastAt = kNow}},
         "Checked 12:00 · claude /usage",
         "Connected, no limits yet",
         "",
         "Connected, no limits yet"},
        {{.asking = failed(Kind::claudeNotFound)},
         "",
         "No reading yet",
         "Vorn asks again by itself.",
         "Couldn't find the claude command. Install Claude Code, or set its path in Settings."},
        {{.asking = failed(Kind::commandFailed, " \n")},
         "Checked 12:00 · claude /usage",
         "No reading yet",
         "It ended without a word; claude -p /usage in a terminal may tell more.",
         "claude /usage failed:"},
        {{.windows = {line}, .asking = failed(Kind::timedOut)},
         "Updated 12:00 · status line",
         "",
         "Claude Code's status line keeps the figures current.",
         "Room to speed up 2.2×"},
        {{.windows = {reading(WindowKind::session(), 40, 2h)}, .asking = failed(Kind::timedOut)},
         "Updated 12:00 · claude /usage",
         "",
         "The last figures stay. Vorn asks again by itself.",
         "Room to speed up 2.2×"},
        {{.windows = {line}, .isJudged = false}, "Updated 12:00 · status line", "", "", "Reading your usage…"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tooltip);
        const Answer answer = VornEngine::formAnswer(c.evidence, kNow);
        EXPECT_EQ(Format::freshness(answer).text(), c.freshness);
        EXPECT_EQ(Format::placeholder(answer).title, c.title);
        EXPECT_EQ(Format::remedy(answer), c.remedy);
        EXPECT_EQ(Format::tooltipLines(answer).front(), c.tooltip);
    }
}

TEST(Format, tellsTheClientsWordsFromVorns) {
    using Kind = ProbeFailure::Kind;
    const struct {
        ProbeFailure failure;
        const char* sentence;
        const char* quoted;
        bool advises;
    } cases[] = {
        {{Kind::commandFailed, "one\ntwo\n"}, "claude /usage failed: one", "two", false},
        {{Kind::commandFailed, "error: unknown option '--safe-mode'"},
         "claude /usage failed: error: unknown option '--safe-mode'",
         "",
         true},
        {{Kind::commandFailed, std::string(3, '\0') + " \r\n"}, "claude /usage failed:", "", true},
        {{Kind::unrecognizedOutput, "{}"},
         "Vorn couldn't read the /usage output. Claude Code may have changed its format.",
         "{}",
         false},
        {{Kind::timedOut, ""}, "claude /usage didn't answer in time.", "", false},
        {{Kind::other, ""}, "", "", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Format::sentence(c.failure), c.sentence);
        EXPECT_EQ(Format::quoted(c.failure), c.quoted) << c.sentence;
        EXPECT_EQ(Format::advice(c.failure).empty(), !c.advises) << c.sentence;
    }
}

}  // namespace
}  // namespace vorn
