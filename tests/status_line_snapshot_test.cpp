#include "core/status_line/status_line_snapshot.hpp"

#include <chrono>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "core/support/file.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

constexpr Instant kNow = std::chrono::sys_days{2026y / 11 / 22} + 20h + 250ms;
constexpr Instant kReset = instantSince1970(1795385906);

UsageWindow reading(WindowKind kind, double percent, std::optional<Instant> reset) {
    return {.kind = std::move(kind),
            .usedPercent = percent,
            .resetsAt = reset,
            .observedAt = kNow,
            .source = DataSource::statusLine};
}

StatusLineSnapshot snapshotAt(Instant observedAt) {
    return {.observedAt = observedAt,
            .rateLimits = {.fiveHour = StatusLineSnapshot::Limit{.usedPercentage = 23.4, .resetsAt = kReset},
                           .sevenDay = StatusLineSnapshot::Limit{}},
            .sessionID = "abc",
            .claudeVersion = std::nullopt};
}

std::vector<std::string> namesIn(const fs::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory)) {
        names.push_back(entry.path().filename());
    }
    return names;
}

TEST(StatusLineSnapshot, ReadsWhatClaudeCodeSends) {
    const auto session = WindowKind::session();
    const auto week = WindowKind::week();
    const struct {
        const char* name;
        std::string input;
        std::vector<UsageWindow> windows;
    } cases[] = {
        {"both",
         R"({"cwd":"/x","context_window":{"used_percentage":9,"rate_limits":7,"current_usage":{"version":1}},
             "list":[{"version":[1]},"rate_limits"],"rate_limits":{"five_hour":{"used_percentage":23.4,"resets_at":1795385906},
             "opus":{"used_percentage":"?"},"seven_day":{"resets_at":1795664906,"used_percentage":61}},"observed_at":"no"})",
         {reading(session, 23.4, kReset), reading(week, 61, instantSince1970(1795664906))}},
        {"one, without a reset",
         R"({"rate_limits":{"five_hour":{"used_percentage":104.0}}})",
         {reading(session, 104, std::nullopt)}},
        {"null is none",
         R"({"session_id":null,"rate_limits":{"five_hour":null,"seven_day":{"used_percentage":1,"resets_at":null}}})",
         {reading(week, 1, std::nullopt)}},
        {"a limit without a percentage",
         R"({"rate_limits":{"five_hour":{"resets_at":1},"seven_day":{"used_percentage":1}}})",
         {reading(week, 1, std::nullopt)}},
        {"the last of several counts",
         R"({"rate_limits":{"seven_day":{"used_percentage":1}},"rate_limits":{"five_hour":{"used_percentage":2,"used_percentage":3}}})",
         {reading(session, 3, std::nullopt)}},
        {"no time at all",
         R"({"rate_limits":{"five_hour":{"used_percentage":1,"resets_at":1e300}}})",
         {reading(session, 1, std::nullopt)}},
        {"milliseconds",
         R"({"rate_limits":{"five_hour":{"used_percentage":1,"resets_at":1795385906000}}})",
         {reading(session, 1, std::nullopt)}},
        {"no limits", R"({"session_id":"x","version":"2.1.330"})", {}},
        {"no percentage", R"({"rate_limits":{"five_hour":{"resets_at":1795385906}}})", {}},
        {"empty limits", R"({"rate_limits":{}})", {}},
        {"limits taken back", R"({"rate_limits":{"five_hour":{"used_percentage":1}},"rate_limits":null})", {}},
        {"a text for a number", R"({"rate_limits":{"five_hour":{"used_percentage":"23"}}})", {}},
        {"a number for a text", R"({"version":2,"rate_limits":{"five_hour":{"used_percentage":23}}})", {}},
        {"a truth for a number", R"({"rate_limits":{"five_hour":{"used_percentage":true}}})", {}},
        {"a list for an object", R"({"rate_limits":{"seven_day":[],"five_hour":{"used_percentage":23}}})", {}},
        {"an object for a number", R"({"rate_limits":{"five_hour":{"used_percentage":{}}}})", {}},
        {"beyond numbers", R"({"rate_limits":{"five_hour":{"used_percentage":1e999}}})", {}},
        {"not a number", R"({"rate_limits":{"five_hour":{"used_percentage":NaN}}})", {}},
        {"truncated", R"({"rate_limits":{"five_hour":{"used_percentage":23}})", {}},
        {"more than one", R"({"rate_limits":{"five_hour":{"used_percentage":23}}}{})", {}},
        {"a list", R"([{"rate_limits":{"five_hour":{"used_percentage":23}}}])", {}},
        {"a text", R"("rate_limits")", {}},
        {"bytes", "\xff\xfe\x00", {}},
        {"nothing", "", {}},
        {"deep", std::string(1'000'000, '['), {}},
        {"deep in a member", R"({"x":)" + std::string(1'000'000, '['), {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto snapshot = StatusLineSnapshot::from(c.input, kNow);
        EXPECT_EQ(snapshot.has_value(), !c.windows.empty());
        EXPECT_EQ(snapshot ? snapshot->windows() : std::vector<UsageWindow>(), c.windows);
    }
    const auto copied = StatusLineSnapshot::from(
        R"({"version":"2.1.330","session_id":"é","rate_limits":{"five_hour":{"used_percentage":1},"seven_day":{}}})",
        kNow);
    ASSERT_TRUE(copied);
    EXPECT_EQ(copied->sessionID, "é");
    EXPECT_EQ(copied->claudeVersion, "2.1.330");
    EXPECT_TRUE(copied->rateLimits.sevenDay);
}

TEST(StatusLineSnapshot, WritesWhatItReads) {
    const test::TemporaryDirectory dir;
    const fs::path file = dir / "new/deeper/statusline.json";
    const StatusLineSnapshot snapshot = snapshotAt(kNow);
    EXPECT_TRUE(snapshot.write(file));
    EXPECT_EQ(StatusLineSnapshot::read(file), snapshot);
    const std::string content = test::readAll(file);
    EXPECT_EQ(content, R"({"observed_at":1795377600.25,"rate_limits":{"five_hour":{"resets_at":1795385906.0,)"
                       R"("used_percentage":23.4},"seven_day":{}},"session_id":"abc"})");
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    ASSERT_EQ(::stat(file.parent_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U);

    for (std::size_t length = 0; length < content.size(); ++length) {
        dir.write("cut.json", std::string_view(content).substr(0, length));
        EXPECT_EQ(StatusLineSnapshot::read(dir / "cut.json"), std::nullopt) << length;
    }
    const char* const damaged[] = {R"({"rate_limits":{}})", R"({"observed_at":1795377600})",
                                   R"({"observed_at":1e300,"rate_limits":{}})",
                                   R"({"observed_at":"1795377600","rate_limits":{}})"};
    for (const char* text : damaged) {
        EXPECT_EQ(StatusLineSnapshot::read(dir.write("damaged.json", text)), std::nullopt) << text;
    }
    EXPECT_EQ(StatusLineSnapshot::read(dir / "missing.json"), std::nullopt);
}

TEST(StatusLineSnapshot, TheNewestStands) {
    const test::TemporaryDirectory dir;
    const fs::path file = dir / "statusline.json";
    const Instant now = systemNow();
    EXPECT_TRUE(snapshotAt(now - 2s).write(file));
    EXPECT_TRUE(snapshotAt(now - 1s).write(file));
    EXPECT_FALSE(snapshotAt(now - 2s).write(file));
    EXPECT_EQ(StatusLineSnapshot::read(file)->observedAt, now - 1s);
    // The clock was set back.
    dir.write("statusline.json", R"({"observed_at":4102444800,"rate_limits":{}})");
    EXPECT_TRUE(snapshotAt(now).write(file));
    EXPECT_EQ(StatusLineSnapshot::read(file)->observedAt, now);
    dir.write("statusline.json", "damaged");
    EXPECT_TRUE(snapshotAt(now).write(file));

    const auto held = FileLock::acquire(dir / "statusline.json.lock", 0ms);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(snapshotAt(systemNow()).write(file));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms);  // 5 on a machine with nothing else to do
}

TEST(StatusLineSnapshot, LeavesNothingElseBehind) {
    const test::TemporaryDirectory dir;
    dir.write("statusline.json.vorn-new-abcdef", "a killed writer's");
    dir.write("statusline.json.backup", "the user's");
    dir.write("elsewhere.json", "");
    fs::create_symlink("elsewhere.json", dir / "statusline.json");
    EXPECT_TRUE(snapshotAt(kNow).write(dir / "statusline.json"));
    EXPECT_TRUE(snapshotAt(kNow + 1s).write(dir / "statusline.json"));
    EXPECT_TRUE(fs::is_symlink(dir / "statusline.json"));
    EXPECT_EQ(StatusLineSnapshot::read(dir / "elsewhere.json")->observedAt, kNow + 1s);

    fs::remove(dir / "statusline.json");
    dir.write("statusline.json", "");
    EXPECT_TRUE(snapshotAt(kNow).write(dir / "statusline.json"));
    EXPECT_THAT(namesIn(dir.path()), UnorderedElementsAre("statusline.json", "statusline.json.lock",
                                                          "statusline.json.backup", "elsewhere.json"));

    fs::create_directories(dir / "taken/statusline.json");
    EXPECT_THROW(snapshotAt(kNow).write(dir / "taken/statusline.json"), fs::filesystem_error);
    EXPECT_THROW(snapshotAt(kNow).write(dir / "elsewhere.json/statusline.json"), fs::filesystem_error);
    EXPECT_THAT(namesIn(dir / "taken"), UnorderedElementsAre("statusline.json", "statusline.json.lock"));
}

}  // namespace
}  // namespace vorn
