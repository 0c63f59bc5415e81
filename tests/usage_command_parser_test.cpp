#include "core/usage_command/usage_command_parser.hpp"

#include <chrono>
#include <filesystem>
#include <limits>
#include <ostream>
#include <string>

#include <fmt/format.h>
#include <gmock/gmock.h>

#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "tests/support/repeated.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {

void PrintTo(const UsageInsights::Finding& finding, std::ostream* out) {
    *out << finding.percent << "% '" << finding.text << "'";
}
void PrintTo(const UsageInsights::Share& share, std::ostream* out) {
    *out << "'" << share.name << "' " << share.percent << '%';
}

namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using test::repeated;
using testing::ElementsAre;
using testing::IsEmpty;
using Finding = UsageInsights::Finding;
using Period = UsageInsights::Period;
using Share = UsageInsights::Share;
namespace parser = UsageCommandParser;

/// A Sunday, 11 in the evening in Berlin.
const Instant kNow = sys_days{2026y / 11 / 22} + 22h;

std::string sample(const char* name) {
    return test::readAll(std::filesystem::path(VORN_USAGE_SAMPLES) / name);
}

/// "2026-11-22T22:37:00Z", or "none": readable in a failure.
std::string shown(std::optional<Instant> instant) {
    return instant ? formatIso8601(*instant) : "none";
}

std::string shown(const std::optional<UsageWindow>& window) {
    return window ? fmt::format("{} {} {}", window->kind.key(), window->usedPercent, shown(window->resetsAt)) : "none";
}

UsageWindow window(WindowKind kind, double percent, std::optional<Instant> resetsAt) {
    return {.kind = std::move(kind),
            .usedPercent = percent,
            .resetsAt = resetsAt,
            .observedAt = kNow,
            .source = DataSource::usageCommand};
}

TEST(UsageCommandParser, ReadsWhatTheClientPrints) {
    const auto windows =
        ElementsAre(window(WindowKind::session(), 23, sys_days{2026y / 11 / 22} + 22h + 37min),
                    window(WindowKind::week(), 61, sys_days{2026y / 11 / 26} + 4h + 7min),
                    window(WindowKind::weekModel("Sonnet only"), 12, sys_days{2026y / 11 / 26} + 4h + 7min));
    const Finding subagents{71,
                            "Check which models your subagents use · share covers whole sessions, not only subagents"};
    const Finding compact{45, "Compact before you step away · run /compact"};
    const Finding fresh{45, "Start fresh when you switch tasks · run /clear"};

    const auto older = parser::parse(sample("2.1.197.txt"), kNow);
    EXPECT_THAT(older.windows, windows);
    EXPECT_TRUE(older.isSubscription);
    ASSERT_TRUE(older.insights && older.insights->periods.size() == 2);
    EXPECT_EQ(older.insights->observedAt, kNow);
    const Period day{
        "Last 24h",
        133,
        9,
        {{71, "came from subagent-heavy sessions"}, {45, "hit a >100k-token cache miss"}, {45, "was at >150k context"}},
        {},
        {}};
    EXPECT_EQ(older.insights->periods[0], day);

    const auto newer = parser::parse(sample("2.1.330.txt"), kNow);
    EXPECT_THAT(newer.windows, windows);
    ASSERT_TRUE(newer.insights && newer.insights->periods.size() == 2);
    EXPECT_THAT(newer.insights->periods[0].findings, ElementsAre(subagents, compact, fresh));
    EXPECT_EQ(newer.insights->periods[1].requests, 784);

    // The lists change nothing but the two that are kept, wherever they stand among the findings.
    const auto lists = parser::parse(sample("2.1.330-top-lists.txt"), kNow);
    ASSERT_TRUE(lists.insights && lists.insights->periods.size() == 2);
    for (std::size_t i = 0; i < 2; ++i) {
        const Period& period = lists.insights->periods[i];
        EXPECT_EQ(period.findings, newer.insights->periods[i].findings);
        EXPECT_THAT(period.topSkills, ElementsAre(Share{"/review", 30}, Share{"/tests", 5}));
        EXPECT_THAT(period.topSubagents, ElementsAre(Share{"explorer", 22}));
    }

    EXPECT_THAT(parser::parse(sample("at-and-years.txt"), kNow).windows,
                ElementsAre(window(WindowKind::session(), 4, sys_days{2027y / 1 / 1} + 8h + 30min),
                            window(WindowKind::week(), 99, sys_days{2027y / 1 / 3} + 3h),
                            window(WindowKind::weekModel("Opus"), 100, sys_days{2026y / 12 / 31} + 17h + 5min),
                            window(WindowKind::weekModel("Sonnet only"), 0, std::nullopt)));
}

TEST(UsageCommandParser, RecognisesLinesWhereverTheyStand) {
    const auto result = parser::parse(
        "Top skills: early 1%\r\n50% of your usage came before any period\r\n"
        "Last 7 days · 1,204 requests · 38 sessions\u2028\t40% of your usage came from subagents\u00A0\n"
        "Top skills: review 30%, tests 5.5%\vTop skills: code review 12%\f"
        "CURRENT SESSION: 7.5 % USED · RESETS 3PM (UTC)\u0085"
        "last 3 days · 1 request\n42% used\nTop skillset 3%\n"
        "Last week\nTop subagents: none worth naming\n3%\u00A0\u202FTitle",
        kNow);
    EXPECT_THAT(result.windows, ElementsAre(window(WindowKind::session(), 7.5, sys_days{2026y / 11 / 23} + 15h)));
    ASSERT_TRUE(result.insights);
    const Period first{"Last 7 days", 1204, 38, {{40, "came from subagents"}}, {{"code review", 12}}, {}};
    const Period second{"Last week", {}, {}, {{3, "Title"}}, {}, {}};
    EXPECT_THAT(result.insights->periods, ElementsAre(first, second));
}

TEST(UsageCommandParser, TellsASubscriptionFromOther) {
    EXPECT_FALSE(parser::parse("Total cost: $0.00", kNow).isSubscription);
    EXPECT_TRUE(parser::parse("Only available for SUBSCRIPTION plans", kNow).isSubscription);
    EXPECT_TRUE(parser::parse("Current week: 1%", kNow).isSubscription);
    EXPECT_FALSE(parser::parse("Current week: 1%", kNow).insights);
}

TEST(UsageCommandParser, ReadsWindowLines) {
    const std::pair<const char*, const char*> cases[] = {
        {"Current session: 23% used · resets Nov 22, 11:16pm (Europe/Berlin)", "session 23 2026-11-22T22:16:00Z"},
        {"cUrReNt Week (All Models): 61% used · Resets 11:16PM (Europe/Berlin)", "week 61 2026-11-22T22:16:00Z"},
        {"Current week (\u00A0Opus 4\u202F): 5%", "week:Opus 4 5 none"},
        {"Current week )Opus(: 5%", "week 5 none"},
        {"Current session: 5% · resets soon", "session 5 none"},
        {"Current session: resets 3pm, 5% used", "session 5 none"},
        {"Current session (5h): 5%", "none"},
        {"Current: 5%", "none"},
        {"Current session: ٢٣% used, 5%", "none"},
        {"Current\u00A0session: 5%", "none"}};
    for (const auto& [line, expected] : cases) {
        EXPECT_EQ(shown(parser::parseWindowLine(line, kNow)), expected) << line;
    }
}

TEST(UsageCommandParser, ReadsPercentages) {
    const std::pair<std::string, std::optional<double>> cases[] = {
        {"used 40%", 40}, {"7.5 % used", 7.5}, {"1.2.5%", 2.5}, {"12.%, 8%", 8}, {"1,5%", 5},
        {"5\u202F%", 5},  {"12 percent", {}},  {"%", {}},       {"abc3%", 3},    {repeated(400, "9") + "%", {}},
        {".5%", 5},       {"-3%", 3}};
    for (const auto& [text, percent] : cases) {
        EXPECT_EQ(parser::leadingPercent(text), percent) << text;
    }
}

void expectResets(std::initializer_list<std::pair<const char*, const char*>> cases, Instant now) {
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(shown(parser::parseResetTime(text, now)), expected) << text;
    }
}

TEST(ResetTime, HasManyForms) {
    const test::ScopedEnvironment zone("TZ", "UTC");
    const Instant noon = sys_days{2026y / 11 / 22} + 12h;
    // Times of day.
    expectResets({{"3pm", "2026-11-22T15:00:00Z"},
                  {"\t3:30 PM ", "2026-11-22T15:30:00Z"},
                  {"at 9am", "2026-11-23T09:00:00Z"},
                  {"At  9\u00A0Am", "2026-11-23T09:00:00Z"},
                  {"12am", "2026-11-23T00:00:00Z"},
                  {"12pm", "2026-11-22T12:00:00Z"},
                  {"15:75", "2026-11-22T16:15:00Z"},
                  {"15:٣٠", "2026-11-22T15:00:00Z"}},
                 noon);
    // Dates. "Jan 2 20" is an hour, not the beginning of a year.
    expectResets({{"Nov 22, 11:16pm", "2026-11-22T23:16:00Z"},
                  {"Nov 22, at 11:16pm", "2026-11-22T23:16:00Z"},
                  {"Sept. 12, 2026 at 10:15am", "2026-09-12T10:15:00Z"},
                  {"Jan 2 2027 7pm", "2027-01-02T19:00:00Z"},
                  {"Jan 2 20", "2027-01-02T20:00:00Z"},
                  {"Mayday 1 8", "2027-05-01T08:00:00Z"},
                  {"Nov 32, 1am", "2026-12-02T01:00:00Z"}},
                 noon);
    // Zones: an unknown one is ignored, with its parentheses.
    expectResets({{"Dec. 20 2025 (Asia/Kathmandu)", "2025-12-19T18:15:00Z"},
                  {"3pm (Mars/Base)", "2026-11-22T15:00:00Z"},
                  {"3pm ( Europe/Berlin ) and more", "2026-11-22T14:00:00Z"},
                  {"3pm(America/Los_Angeles)", "2026-11-22T23:00:00Z"}},
                 noon);
    for (const char* text : {"", "in 3pm", "100", "3:5pm", "٣pm", "No 3 at 5pm", "Nov 22,11:16pm",
                             "3pm (a) (Asia/Tokyo)", "3pm (Europe/Berlin", "(Europe/Berlin)"}) {
        EXPECT_EQ(shown(parser::parseResetTime(text, noon)), "none") << text;
    }
}

TEST(ResetTime, RollsOverWhenItHasPassed) {
    const test::ScopedEnvironment zone("TZ", "Asia/Kathmandu");  // 5:45 ahead
    const Instant three = sys_days{2026y / 12 / 30} + 9h + 15min;
    expectResets({{"3pm", "2026-12-30T09:15:00Z"}}, three + 5min);
    expectResets({{"3pm", "2026-12-31T09:15:00Z"}, {"3pm (UTC)", "2026-12-30T15:00:00Z"}}, three + 5min + 1ms);
    // A date without a year may lie back two days to the second.
    expectResets({{"Jan 2", "2027-01-01T18:15:00Z"},
                  {"Dec 29", "2026-12-28T18:15:00Z"},
                  {"Dec 28, 3pm", "2026-12-28T09:15:00Z"},
                  {"Dec 28, 2:59pm", "2027-12-28T09:14:00Z"},
                  {"Dec 28, 2026, 2pm", "2026-12-28T08:15:00Z"}},
                 three);
    // Today is the zone's today: in Kathmandu it is New Year already.
    expectResets(
        {{"7am", "2027-01-01T01:15:00Z"}, {"Jan 1", "2026-12-31T18:15:00Z"}, {"Jan 1 (UTC)", "2027-01-01T00:00:00Z"}},
        sys_days{2026y / 12 / 31} + 20h);
}

TEST(ResetTime, KnowsWhenTheClockChanges) {
    // Berlin skips 02:00 to 03:00 on 29 March and has it twice on 25 October; Lord Howe changes by half an hour.
    expectResets(
        {{"2:30am (Europe/Berlin)", "2026-03-29T01:30:00Z"}, {"3:30am (Europe/Berlin)", "2026-03-29T01:30:00Z"}},
        sys_days{2026y / 3 / 28} + 23h);
    expectResets({{"2:30am (Europe/Berlin)", "2026-03-29T01:30:00Z"}, {"11am (Europe/Berlin)", "2026-03-29T09:00:00Z"}},
                 sys_days{2026y / 3 / 28} + 12h);
    expectResets({{"2:30am (Europe/Berlin)", "2026-10-25T00:30:00Z"}, {"11am (Europe/Berlin)", "2026-10-25T10:00:00Z"}},
                 sys_days{2026y / 10 / 24} + 12h);
    expectResets({{"Oct 25, 2:30am (Europe/Berlin)", "2026-10-25T00:30:00Z"},
                  {"Oct 4, 2:10am (Australia/Lord_Howe)", "2026-10-03T15:40:00Z"},
                  {"Apr 5, 2026, 1:45am (Australia/Lord_Howe)", "2026-04-04T14:45:00Z"}},
                 sys_days{2026y / 10 / 2});
}

TEST(ResetTime, FollowsTheSystemsZone) {
    const auto local = [](const char* text) {
        return Calendar(currentTimeZone()).wallTime(parser::parseResetTime(text, kNow).value());
    };
    EXPECT_EQ(local("Jan 5, 2027 at 3pm"), (WallTime{.year = 2027, .month = 1, .day = 5, .hour = 15}));
    EXPECT_EQ(local("Jul 20, 2025"), (WallTime{.year = 2025, .month = 7, .day = 20}));
    const test::ScopedEnvironment zone("TZ", "<+0530>-5:30");
    expectResets({{"Jan 5, 2027 at 3pm", "2027-01-05T09:30:00Z"}}, kNow);
}

TEST(ResetTime, KnowsWhatChangedLately) {
    // Rules that a library of some years ago does not have: the client's words say when the window resets.
    expectResets({{"Jul 15, 2026, 3pm (America/Mexico_City)", "2026-07-15T21:00:00Z"},
                  {"Jul 15, 2026, 3pm (Africa/Cairo)", "2026-07-15T12:00:00Z"},
                  {"Jul 15, 2026, 3pm (America/Ciudad_Juarez)", "2026-07-15T21:00:00Z"},
                  {"Jan 15, 2026, 3pm (Asia/Almaty)", "2026-01-15T10:00:00Z"},
                  {"Jul 15, 2026, 3pm (America/Asuncion)", "2026-07-15T18:00:00Z"}},
                 kNow);
}

TEST(UsageCommandParser, ReadsMonths) {
    const std::pair<const char*, std::optional<int>> cases[] = {{"JAN", 1},  {"Mayday", 5}, {"jun", 6}, {"JULI", 7},
                                                                {"Sept", 9}, {"Ja", {}},    {"Måy", {}}};
    for (const auto& [name, month] : cases) {
        EXPECT_EQ(parser::monthNumber(name), month) << name;
    }
}

TEST(UsageCommandParser, ReadsPeriodHeaders) {
    const std::pair<const char*, Period> cases[] = {
        {"Last 7 days · 1,234 requests · 56 sessions", {"Last 7 days", 1234, 56, {}, {}, {}}},
        {"Last 24h\u00A0·\u202F56 sessions · 8 requests · 9 requests", {"Last 24h", 8, 56, {}, {}, {}}},
        {"Last 24h · 12½ requests · ٣ sessions", {"Last 24h", {}, {}, {}, {}, {}}},
        {"Last 24h · 99999999999999999999 requests · , sessions", {"Last 24h", {}, {}, {}, {}, {}}},
        {"Last 24h · 5 Requests · 5 requestss · 7 subsession", {"Last 24h", {}, 7, {}, {}, {}}},
    };
    for (const auto& [line, period] : cases) {
        EXPECT_EQ(parser::parsePeriodHeader(line), period) << line;
    }
    EXPECT_FALSE(parser::parsePeriodHeader("last 24h · 1 request"));
}

TEST(UsageCommandParser, ReadsShares) {
    const auto shares = [](const char* line) {
        return parser::parseShares(line, "Top skills:");
    };
    EXPECT_THAT(*shares("Top skills: code review 12%, a  5.5% b 7%,1 2 3%,x\u00A04%, +2 more,, 5%, 1,5%, c 5 %"),
                ElementsAre(Share{"code review", 12}, Share{"a", 5.5}, Share{"1 2", 3}, Share{"x", 4}));
    EXPECT_THAT(*shares("Top skills:"), IsEmpty());
    EXPECT_FALSE(shares("top skills: a 1%"));
    EXPECT_FALSE(shares("Top plugins: a 1%"));
}

TEST(UsageCommandParser, ReadsFindings) {
    EXPECT_EQ(parser::parseFinding("4.5%  of your usage  was 30% of your usage"),
              (Finding{4.5, "was 30% of your usage"}));
    EXPECT_EQ(parser::parseFinding("71%  Which models · share, of 5%"), (Finding{71, "Which models · share, of 5%"}));
    for (const char* line : {"42% used", "42% Of your usage came", "42 % of your usage came", "42%", "1,5%  Title",
                             "٤٢%  Title", "about 42% of your usage came"}) {
        EXPECT_FALSE(parser::parseFinding(line)) << line;
    }
}

TEST(UsageCommandParser, SurvivesHostileText) {
    const auto began = std::chrono::steady_clock::now();
    const std::string line = "\nCurrent session: 5% used";
    const std::size_t big = 1U << 20U;
    for (const std::string& hostile :
         {std::string("Current week: ") + std::string(big, '1'), "Current week: " + repeated(big / 4, "1.1 "),
          "Current week: " + repeated(big / 4, "1   ") + "%",
          "Current session: 1% resets " + std::string(big, ' ') + "x",
          "Current session: 1% resets Jan" + std::string(big, ' ') + "1" + std::string(big, ' ') + "1x",
          "Current week " + std::string(big, '(') + ": 1%", "Last " + repeated(big, "·"),
          "Last 7d\nTop skills: " + std::string(big, ' ') + "a" + std::string(big, ' ') + "%",
          "Last 7d\nTop skills: " + repeated(big / 4, "a 1 "),
          "Last 7d\nTop skills: " + repeated(big / 4, "a 1%") + " 5%",
          "Last 7d\n1%" + std::string(big, ' ') + "of your usage", "Last 7d\n" + std::string(big, '1') + "%",
          std::string(big, '\n'), repeated(big / 8, "Last 7d\n"), std::string(big, '\xE2'), std::string(big, '\0'),
          std::string("\xFF\xC2\xA0") + std::string(16, '\x80')}) {
        const auto result = parser::parse(hostile + line, kNow);
        EXPECT_EQ(shown(result.windows.empty() ? std::nullopt : std::optional(result.windows.back())), "session 5 none")
            << hostile.substr(0, 40);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - began, 30s);

    // Bytes that are no UTF-8 do not reach the records.
    const auto broken = parser::parse("Current week (\xFFOpus): 5%\nLast \xE2\x82", kNow);
    EXPECT_EQ(broken.windows.at(0).kind.modelName(), "\uFFFDOpus");
    EXPECT_EQ(broken.insights->periods.at(0).label, "Last \uFFFD");

    // A line is read to a limit, which cuts no character in two.
    const auto cut =
        parser::parse("Current week: 7% used" + std::string(big, 'x') + "\nLast " + repeated(big, "…"), kNow);
    EXPECT_EQ(shown(cut.windows.at(0)), "week 7 none");
    EXPECT_TRUE(cut.insights->periods.at(0).label.ends_with("…"));

    for (const double seconds : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_NO_THROW(parser::parseResetTime("Jan 2 at 3pm", instantSince1970(seconds))) << seconds;
    }
}

}  // namespace
}  // namespace vorn
