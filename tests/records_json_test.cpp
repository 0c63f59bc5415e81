#include <algorithm>

#include <gtest/gtest.h>

#include "core/data/usage_insights.hpp"
#include "core/data/usage_window.hpp"
#include "core/support/json.hpp"

namespace vorn {
namespace {

using nlohmann::json;

TEST(WindowKindJson, hasOneKeyPerCase) {
    const std::pair<WindowKind, const char*> cases[] = {
        {WindowKind::session(), R"({"session":{}})"},
        {WindowKind::week(), R"({"week":{}})"},
        {WindowKind::weekModel("Opus"), R"({"weekModel":{"_0":"Opus"}})"},
    };
    for (const auto& [kind, text] : cases) {
        EXPECT_EQ(encode(kind).dump(), text);
        EXPECT_EQ(decodeWindowKind(json::parse(text)), kind);
    }
    for (const char* text : {R"({})", R"({"session":{},"week":{}})", R"({"session":{},"extra":1})", R"({"month":{}})",
                             R"({"session":1})", R"({"week":null})", R"({"weekModel":{}})", R"({"weekModel":{"_0":5}})",
                             R"({"weekModel":{"_0":""}})", R"("session")", R"([])", R"(null)"}) {
        EXPECT_THROW(decodeWindowKind(json::parse(text)), DecodingError) << text;
    }
}

TEST(WindowKind, hasKeysAndAnOrder) {
    const WindowKind kinds[] = {WindowKind::session(), WindowKind::week(), WindowKind::weekModel("A"),
                                WindowKind::weekModel("B")};
    EXPECT_TRUE(std::ranges::is_sorted(kinds));
    for (const WindowKind& kind : kinds) {
        EXPECT_EQ(WindowKind::fromKey(kind.key()), kind);
    }
    for (const char* key : {"week:", "", "Session", "weekly", "session "}) {
        EXPECT_EQ(WindowKind::fromKey(key), std::nullopt) << key;
    }
}

TEST(UsageWindowJson, roundTripsUnderBothDateForms) {
    UsageWindow window{.kind = WindowKind::weekModel("Opus"),
                       .usedPercent = 12.5,
                       .resetsAt = instantSince1970(1795664906),
                       .observedAt = instantSince1970(1795380300),
                       .source = DataSource::statusLine};
    for (const DateCoding dates : {DateCoding::secondsSince1970, DateCoding::iso8601}) {
        EXPECT_EQ(decodeUsageWindow(encode(window, dates), dates), window);
    }
    window.resetsAt.reset();
    EXPECT_EQ(
        encode(window, DateCoding::iso8601).dump(),
        R"({"kind":{"weekModel":{"_0":"Opus"}},"observedAt":"2026-11-22T20:45:00Z","source":"statusLine","usedPercent":12.5})");
}

TEST(UsageWindowJson, refusesWhatIsMissingOrOfAnotherType) {
    const json good = encode(UsageWindow{.kind = WindowKind::session(),
                                         .usedPercent = 1,
                                         .resetsAt = instantSince1970(5),
                                         .observedAt = instantSince1970(4)},
                             DateCoding::secondsSince1970);
    for (const char* key : {"kind", "usedPercent", "observedAt", "source"}) {
        json broken = good;
        broken.erase(key);
        EXPECT_THROW(decodeUsageWindow(broken, DateCoding::secondsSince1970), DecodingError) << key;
        broken[key] = json::array();
        EXPECT_THROW(decodeUsageWindow(broken, DateCoding::secondsSince1970), DecodingError) << key;
    }
    for (const auto& [key, value] : {std::pair("source", "elsewhere"), std::pair("resetsAt", "soon")}) {
        json broken = good;
        broken[key] = value;
        EXPECT_THROW(decodeUsageWindow(broken, DateCoding::secondsSince1970), DecodingError) << key;
    }
    EXPECT_THROW(decodeUsageWindow(json::parse("[1]"), DateCoding::iso8601), DecodingError);
}

TEST(UsageInsightsJson, leavesOutAbsentCountsAndRequiresTheRest) {
    const UsageInsights insights{
        .periods = {{.label = "Last 24h", .requests = 133, .findings = {{71, "x"}}, .topSkills = {{"/review", 30}}}},
        .observedAt = instantSince1970(1795380300)};
    const json coded = encode(insights, DateCoding::iso8601);
    EXPECT_EQ(decodeUsageInsights(coded, DateCoding::iso8601), insights);
    const json& period = coded["periods"][0];
    EXPECT_EQ(period.dump(), R"({"findings":[{"percent":71.0,"text":"x"}],"label":"Last 24h","requests":133,)"
                             R"("topSkills":[{"name":"/review","percent":30.0}],"topSubagents":[]})");
    for (const char* key : {"label", "findings", "topSkills", "topSubagents"}) {
        json broken = coded;
        broken["periods"][0].erase(key);
        EXPECT_THROW(decodeUsageInsights(broken, DateCoding::iso8601), DecodingError) << key;
    }
    json fractional = coded;
    fractional["periods"][0]["requests"] = 1.5;
    EXPECT_THROW(decodeUsageInsights(fractional, DateCoding::iso8601), DecodingError);
}

}  // namespace
}  // namespace vorn
