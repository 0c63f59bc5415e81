#include "core/status_line/more_limits.hpp"

#include <chrono>

#include <gtest/gtest.h>

#include "core/data/limit_names.hpp"
#include "core/support/file.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

const Instant kNow = std::chrono::sys_days{2026y / 11 / 22} + 20h + 250ms;

TEST(MoreLimits, AreWhatTheSnapshotDoesNotHold) {
    const char* const without[] = {
        "",
        "garbage",
        R"({"rate_limits":[]})",
        R"({"rate_limits":{"five_hour":{"used_percentage":1},"seven_day":{"used_percentage":2}}})",
        R"({"rate_limits":{"five_hour":{"used_percentage":1},"limits":[{"kind":"session","percent":1}]}})",
        R"({"rate_limits":{"five_hour":7,"seven_day_opus":{"used_percentage":1e999}}})",
    };
    for (const char* input : without) {
        EXPECT_EQ(MoreLimits::from(input, kNow), std::nullopt) << input;
    }
    const auto more = MoreLimits::from(
        R"({"rate_limits":{"five_hour":null,"seven_day":{"used_percentage":2},"seven_day_opus":{"used_percentage":3},
            "limits":[{"kind":"session","percent":4},{"kind":"weekly_all","percent":5}]}})",
        kNow);
    ASSERT_TRUE(more);
    ASSERT_EQ(more->limits.windows.size(), 2);
    EXPECT_EQ(more->limits.windows[0].kind, modelWeek("Opus"));
    EXPECT_EQ(more->limits.windows[1].kind, WindowKind::session());
}

TEST(MoreLimits, AreReadAsTheyWereLeft) {
    const test::TemporaryDirectory dir;
    const auto file = dir / "new/limits.json";
    const auto more = MoreLimits::from(
        R"({"rate_limits":{"seven_day_opus":{"used_percentage":104.5,"resets_at":1795726800},
            "spend_limit":{"used":30,"cap":40,"resets_at":1795726800},"five_hour_fast":{"used_percentage":1},
            "extra_usage":{"is_enabled":true,"used_credits":12,"monthly_limit":2000,"currency":"EUR"}}})",
        kNow);
    ASSERT_TRUE(more);
    ASSERT_TRUE(more->write(file));
    EXPECT_EQ(readMoreLimits(file), more);

    const std::string content = test::readAll(file);
    for (std::size_t length = 0; length < content.size(); ++length) {
        dir.write("cut.json", std::string_view(content).substr(0, length));
        EXPECT_EQ(readMoreLimits(dir / "cut.json"), std::nullopt) << length;
    }
    for (const char* damaged :
         {"[]", R"({"observedAt":1e300,"windows":[],"others":[]})", R"({"observedAt":1,"windows":7,"others":[]})",
          R"({"observedAt":1,"windows":[],"others":[{"name":1}]})"}) {
        EXPECT_EQ(readMoreLimits(dir.write("damaged.json", damaged)), std::nullopt) << damaged;
    }
    const auto held = FileLock::acquire(dir / "new/limits.json.lock", 0ms);
    EXPECT_FALSE(more->write(file));
}

}  // namespace
}  // namespace vorn
