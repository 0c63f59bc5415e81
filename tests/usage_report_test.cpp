#include "core/usage_command/usage_report.hpp"

#include <algorithm>
#include <filesystem>
#include <tuple>

#include <fmt/format.h>
#include <gmock/gmock.h>

#include "core/usage_command/usage_command_parser.hpp"
#include "tests/support/readings.hpp"
#include "tests/support/repeated.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

using Outcome = UsageReport::Outcome;
using test::kNow;
using test::repeated;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::string sample(const std::string& name) {
    return test::readAll(std::filesystem::path(VORN_REPORT_SAMPLES) / (name + ".json"));
}

UsageReport read(std::string_view output) {
    return UsageReport::read(output, kNow);
}

/// An answer around these members, which may take several lines here.
std::string answer(std::string members) {
    std::ranges::replace(members, '\n', ' ');
    return R"({"type":"control_response","response":{"subtype":"success","request_id":"1","response":{)" + members +
           "}}}\n";
}
ReportedLimits limits(const std::string& members) {
    return read(answer(R"("rate_limits_available":true,"rate_limits":{)" + members + "}")).limits;
}

/// "session 42.5 2026-11-23T15:33:16Z", …
std::vector<std::string> shown(const ReportedLimits& limits) {
    std::vector<std::string> lines;
    for (const UsageWindow& window : limits.windows) {
        EXPECT_EQ(std::tuple(window.observedAt, window.source), std::tuple(kNow, DataSource::usageCommand));
        lines.push_back(fmt::format("{} {} {}", window.kind.key(), window.usedPercent,
                                    window.resetsAt ? formatIso8601(*window.resetsAt) : "none"));
    }
    return lines;
}
std::vector<std::string> shown(const OtherLimits& others) {
    std::vector<std::string> lines;
    for (const OtherLimit& limit : others.limits) {
        lines.push_back(fmt::format("{} {} {}/{} {}", limit.name, limit.usedPercent, limit.used.value_or(-1),
                                    limit.cap.value_or(-1), limit.resetsAt ? formatIso8601(*limit.resetsAt) : "none"));
    }
    return lines;
}

TEST(UsageReport, ReadsWhatTheClientAnswers) {
    const UsageReport report = read(R"({"type":"system","subtype":"control_response"})"
                                    "\nWelcome to control_response!\r\n" +
                                    sample("model-week-and-credits"));
    EXPECT_EQ(report.outcome, Outcome::figures);
    EXPECT_EQ(report.plan, "max");
    EXPECT_THAT(shown(report.limits), ElementsAre("session 42.5 2026-11-23T15:33:16Z", "week 61.2 2026-11-26T21:03:16Z",
                                                  "week:Fable 70 2026-11-26T21:03:16Z"));
    EXPECT_TRUE(report.limits.hasList && report.limits.isUnderstood && !report.limits.hasModelList);
    EXPECT_EQ(
        report.limits.others.credits,
        (Credits{
            .isEnabled = true, .spent = 1540, .cap = 2000, .usedPercent = 77, .currency = "USD", .observedAt = kNow}));
    EXPECT_EQ(report.insights, std::nullopt) << "periods without a request are not printed either";

    const UsageReport full = read(sample("breakdown"));
    EXPECT_THAT(full.limits.windows, SizeIs(3));
    EXPECT_TRUE(full.limits.hasModelList);
    EXPECT_EQ(full.limits.others, OtherLimits{});
    EXPECT_EQ(full.insights->periods.at(0).findings.at(0).text,
              "Check which models your subagents use · share covers whole sessions, not only subagents");
    EXPECT_EQ(read(sample("no-figures")).outcome, Outcome::noFigures);
    EXPECT_EQ(read(sample("api-key")).outcome, Outcome::noPlan);
    const std::string refusal =
        R"({"type":"control_response","response":{"subtype":"error","request_id":"1","error":"Unsupported …"}})";
    EXPECT_EQ(read(refusal).outcome, Outcome::refused);
}

TEST(UsageReport, TellsTheBreakdownAsTheTextDoes) {
    // Both were printed by one client, one after the other.
    const auto printed = UsageCommandParser::parse(
        "Last 24h · 8 requests · 3 sessions\n"
        "  25%  Run /review on a cheaper model\n"
        "  13%  Check which model \"review\" subagents use\n"
        "  Top skills: /review 25%\n"
        "  Top subagents: review 13%, general-purpose 13%\n"
        "Last 7d · 8 requests · 3 sessions\n"
        "  25%  Run /review on a cheaper model\n"
        "  13%  Check which model \"review\" subagents use\n"
        "  Top skills: /review 25%\n"
        "  Top subagents: review 13%, general-purpose 13%\n",
        kNow);
    EXPECT_EQ(read(sample("top-lists")).insights, printed.insights);

    const std::string keys = sample("behaviors-2.1.197");
    const auto period = [](const std::string& members) {
        return answer(R"("behaviors":{"day":{"request_count":7,"recommendations":[)" + members + "}}");
    };
    for (const std::string& unknown : {answer(keys.substr(1, keys.find_last_of('}') - 1)), period(R"("a sentence"])"),
                                       period(R"(],"skills":["a"])"), period(R"(],"agents":[{"name":"a"}])"),
                                       period(R"(],"plugins":[{"id":1}])"), period(R"(],"mcp_servers":[[]])")}) {
        const UsageReport report = read(unknown);
        EXPECT_TRUE(report.hidesBreakdown && !report.insights) << unknown;
    }
    const UsageReport known = read(period(R"({"pct":5,"title":"T"}],"plugins":[{"name":"a","pct":1}],"skills":null)"));
    EXPECT_FALSE(known.hidesBreakdown);
    EXPECT_THAT(known.insights->periods, SizeIs(1));
    EXPECT_EQ(known.insights->periods[0].findings, (std::vector<UsageInsights::Finding>{{5, "T"}}));
}

TEST(UsageReport, FindsEveryLimit) {
    const ReportedLimits known = limits(R"(
        "limits": [{"kind": "weekly_scoped", "percent": 9, "scope": {"model": {"display_name": "SONNET only"}}},
                   {"kind": "weekly_scoped", "percent": 70, "scope": {"model": {"id": "fable-5"}, "surface": "x"}},
                   {"kind": "weekly_scoped", "percent": 3, "scope": {"model": null, "surface": "side_work"}},
                   {"kind": "weekly_scoped", "percent": 4}, {"kind": "session", "percent": 5},
                   {"kind": "spend_limit", "percent": 8}, {"kind": "daily", "percent": 130}, {"percent": 1}, 7],
        "seven_day_sonnet": {"utilization": 12.5, "resets_at": "2026-11-26T22:38:39.583+01:00"},
        "seven_day": {"utilization": 104.25, "resets_at": "soon"},
        "five_hour_opus": {"utilization": 0, "resets_at": null},
        "spend_limit": {"used": 31, "limit": 124, "resets_at": "2026-12-01T00:00:00Z"},
        "seven_day_oauth_apps": {"utilization": 1}, "seven_day_opus": null,
        "other": {"note": true}, "more": [{"utilization": 5}], "flag": true)");
    EXPECT_THAT(shown(known),
                ElementsAre("week:Sonnet 12.5 2026-11-26T21:38:39Z", "week 104.25 none", "week:Oauth apps 1 none",
                            "week:fable-5 70 none", "week:Side work 3 none", "session 5 none"));
    EXPECT_THAT(shown(known.others),
                ElementsAre("Five hour opus 0 -1/-1 none", "Spend limit 25 31/124 2026-12-01T00:00:00Z",
                            "Weekly scoped 4 -1/-1 none", "Daily 130 -1/-1 none"));
    EXPECT_TRUE(known.isUnderstood);
    for (const char* wrong : {R"("seven_day":{"utilization":"5"})", R"("five_hour":7)", R"("seven_day":{})",
                              R"("five_hour":{"utilization":-1})", R"("five_hour":{"utilization":1e999})"}) {
        EXPECT_FALSE(limits(R"("seven_day_opus":{"utilization":1},)" + std::string(wrong)).isUnderstood) << wrong;
        EXPECT_EQ(read(answer(R"("rate_limits_available":true,"rate_limits":{)" + std::string(wrong) + "}")).outcome,
                  Outcome::unreadable);
    }
    EXPECT_EQ(read(answer(R"("rate_limits_available":true,"rate_limits":{"five_hour":null})")).outcome,
              Outcome::noFigures);
    EXPECT_EQ(limits(R"("extra_usage":{"is_enabled":false,"monthly_limit":null,"used_credits":null})").others.credits,
              (Credits{.observedAt = kNow}));
}

TEST(UsageReport, SurvivesHostileOutput) {
    const std::size_t big = 1U << 20U;
    const std::string full = sample("model-week-and-credits");
    for (const std::string& hostile :
         {std::string(), std::string("{}"), full.substr(0, full.size() - 3),
          full.substr(0, full.find_last_of('}')) + " x", R"(["control_response"])" + std::string("\n"),
          R"({"type":"control_response"})" + std::string("\n"),
          R"({"type":"control_response","response":)" + std::string(big, '['), repeated(big, R"({"control_response":)"),
          repeated(big / 16, "control_response\n"), "control_response" + std::string(big, '\xff'),
          answer(R"("rate_limits":{"five_hour":{"utilization":1},"x":")"
                 "\xff"
                 R"("})"),
          answer(R"("rate_limits":{"limits":[{"scope":)" + std::string(1000, '[') + "]}]")}) {
        EXPECT_EQ(read(hostile).outcome, Outcome::unreadable) << hostile.substr(0, 80);
        EXPECT_EQ(read(hostile + "\n" + full).outcome, Outcome::figures) << hostile.substr(0, 80);
    }
    std::string many;
    for (int i = 0; i < 20000; ++i) {
        many += fmt::format(R"("seven_day_m{}":{{"utilization":{}}},"spend_{}":{{"utilization":1}},)", i, i, i);
    }
    const ReportedLimits bounded =
        limits(many + R"("limits":[)" + repeated(20000, R"({"kind":"k","percent":1},)") + "7]");
    EXPECT_THAT(bounded.windows, SizeIs(100));
    EXPECT_THAT(bounded.others.limits, SizeIs(100));
    EXPECT_TRUE(bounded.hasList);
    EXPECT_EQ(read(answer(R"("rate_limits":{"five_hour":{"utilization":1}},"x":)" + std::string(5000, '[') +
                          std::string(5000, ']')))
                  .outcome,
              Outcome::figures);
}

}  // namespace
}  // namespace vorn
