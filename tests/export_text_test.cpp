#include "core/transcripts/export_text.hpp"

#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;

TEST(ExportText, WritesReadingsInBothForms) {
    const HistorySample samples[] = {{"week:a,\"b\"", 12.5, kNow + 1h, kNow},
                                     {"session", std::nan(""), kNow, kNow},
                                     {"session", 7, std::nullopt, kNow + 1min}};
    EXPECT_EQ(exportHistory(samples, ExportFormat::csv),
              "observedAt,window,usedPercent,resetsAt\r\n"
              "2026-11-22T12:00:00.000Z,\"week:a,\"\"b\"\"\",12.5,2026-11-22T13:00:00.000Z\r\n"
              "2026-11-22T12:01:00.000Z,session,7,\r\n");
    const auto json = nlohmann::json::parse(exportHistory(samples, ExportFormat::json));
    ASSERT_EQ(json.size(), 2U);
    EXPECT_EQ(json[0]["window"], "week:a,\"b\"");
    EXPECT_EQ(json[0]["usedPercent"], 12.5);
    EXPECT_FALSE(json[1].contains("resetsAt"));
    EXPECT_EQ(nlohmann::json::parse(exportHistory({}, ExportFormat::json)), nlohmann::json::array());
}

TEST(ExportText, WritesRepliesWhateverTheirDirectoryIsCalled) {
    const ActivityEvent events[] = {
        {.timestamp = kNow, .model = "claude-sonnet-5", .cwd = "/p/=1+1", .tokens = {.input = 10, .output = 2}},
        {.timestamp = kNow, .model = "unknown", .cwd = "/p/b\xff\nd", .tokens = {.cacheRead = 3}}};
    const std::string csv = exportActivity(events, ExportFormat::csv);
    EXPECT_THAT(csv, testing::HasSubstr(",\"'=1+1\",claude-sonnet-5,10,2,0,0,0,20\r\n"));
    EXPECT_THAT(csv, testing::HasSubstr(",\"b\xEF\xBF\xBD\nd\",unknown,0,0,3,0,0,"));
    const auto json = nlohmann::json::parse(exportActivity(events, ExportFormat::json));
    EXPECT_EQ(json[0]["project"], "=1+1");
    EXPECT_EQ(json[0]["outputTokens"], 2);
}

}  // namespace
}  // namespace vorn
