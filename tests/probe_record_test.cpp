#include "core/data/probe_record.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/support/file.hpp"
#include "tests/support/readings.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::kNow;

ProbeRecord fullRecord() {
    ProbeRecord record{.lastProbeAt = kNow,
                       .readings = {test::reading(WindowKind::session(), 20.5, 3h),
                                    test::reading(WindowKind::weekModel("Sonnet\x1b"), 7, 90h)},
                       .expectedResets = {WindowKind::week(), WindowKind::weekModel("Opus")},
                       .pendingDrops = {test::reading(WindowKind::session(), 3, 3h)},
                       .others = {.limits = {{.name = "Spend limit",
                                              .usedPercent = 101.5,
                                              .used = 1.5,
                                              .cap = 2,
                                              .resetsAt = kNow + 3h,
                                              .observedAt = kNow},
                                             {.name = "Five hour opus", .observedAt = kNow}},
                                  .credits = Credits{.isEnabled = true,
                                                     .spent = 1540,
                                                     .cap = 2000,
                                                     .usedPercent = 77,
                                                     .currency = "USD",
                                                     .observedAt = kNow + 0.5s}},
                       .missing = {{WindowKind::weekModel("Opus"), {.since = kNow - 60s, .until = kNow}}},
                       .account = "3f2a"};
    record.readings[0].observedAt = kNow + 0.25s;
    record = record.afterFailure(kNow + 5.125s, {ProbeFailure::Kind::commandFailed, "one\ntwo"});
    record.figuresOf = kNow - 1.5s;
    return record;
}

TEST(ProbeRecordStore, KeepsWhatIsToBeKnownNextTime) {
    const test::TemporaryDirectory dir;
    const ProbeRecordStore store(dir / "new/probe.json");
    EXPECT_EQ(store.load(), ProbeRecord{});
    ASSERT_TRUE(store.save(fullRecord()));
    EXPECT_EQ(store.load(), fullRecord());
    EXPECT_EQ(store.load().consecutiveFailures, 1);
    ASSERT_TRUE(store.save({}));
    EXPECT_EQ(store.load(), ProbeRecord{});
    EXPECT_FALSE(ProbeRecordStore(dir / "new/probe.json/below").save({}));
}

/// Before kinds and fractions were kept there were texts and whole seconds; those are still written for that version.
TEST(ProbeRecordStore, SharesTheFileWithTheFirstVersion) {
    using Kind = ProbeFailure::Kind;
    const test::TemporaryDirectory dir;
    const std::pair<const char*, ProbeFailure> cases[] = {
        {"Couldn't run claude: no such file", {Kind::launchFailed, "no such file"}},
        {"claude /usage failed: one\\ntwo", {Kind::commandFailed, "one\ntwo"}},
        {"Couldn't find the claude command. Install Claude Code, or set its path in Settings.",
         {Kind::claudeNotFound, ""}},
        {"claude /usage didn't answer in time.", {Kind::timedOut, ""}},
        {"something else", {Kind::other, "something else"}},
    };
    for (const auto& [text, failure] : cases) {
        const std::string old =
            std::string(R"({"consecutiveFailures": 2, "lastProbeAt": "2026-11-22T12:00:00Z", "lastError": ")") + text +
            "\"}";
        const ProbeRecordStore store(dir.write("probe.json", old));
        const ProbeRecord record = store.load();
        EXPECT_EQ(record, (ProbeRecord{.lastProbeAt = kNow, .consecutiveFailures = 2, .failure = failure})) << text;
        ASSERT_TRUE(store.save(record));
        EXPECT_EQ(store.load(), record);
        const std::string written = readFile(dir / "probe.json").value();
        EXPECT_NE(written.find(std::string(R"("lastError": ")") + text), std::string::npos) << written;
        EXPECT_NE(written.find(R"("lastProbeAt": "2026-11-22T12:00:00Z")"), std::string::npos) << written;
    }
}

TEST(ProbeRecordStore, TakesADamagedFileForNone) {
    const test::TemporaryDirectory dir;
    for (const char* text :
         {"", "{", "[]", "null", R"({"lastProbeAt": "2026-11-22T12:00:00Z"})", R"({"consecutiveFailures": "2"})",
          R"({"consecutiveFailures": 1.5})", R"({"consecutiveFailures": 1, "lastProbeAt": "yesterday"})",
          R"({"consecutiveFailures": 1, "readings": [{"kind": {"session": {}}}]})",
          R"({"consecutiveFailures": 1, "expectedResets": ["session"]})",
          R"({"consecutiveFailures": 1, "pendingDrops": [5]})", R"({"consecutiveFailures": 1, "failure": "no"})",
          R"({"consecutiveFailures": 1, "probedAt": "12:00"})", R"({"consecutiveFailures": 1, "lastError": 5})"}) {
        EXPECT_EQ(ProbeRecordStore(dir.write("probe.json", text)).load(), ProbeRecord{}) << text;
    }
    const auto failures = [&](const char* text) {
        return ProbeRecordStore(dir.write("probe.json", text)).load().consecutiveFailures;
    };
    EXPECT_EQ(failures(R"({"consecutiveFailures": -3, "readings": {}})"), 0);
    EXPECT_EQ(failures(R"({"consecutiveFailures": 9000000000})"), 1000);
}

TEST(ProbeRecordStore, LosesNoEditOfSeveralPrograms) {
    const test::TemporaryDirectory dir;
    const fs::path file = dir / "new/probe.json";
    constexpr int kPrograms = 4;
    constexpr int kEdits = 10;
    for (int program = 0; program < kPrograms; ++program) {
        if (::fork() == 0) {
            for (int i = 0; i < kEdits; ++i) {
                ProbeRecordStore(file).edit(
                    [&](ProbeRecord& record) {
                        ++record.consecutiveFailures;
                        record.expectedResets.insert(WindowKind::weekModel(std::to_string(program * kEdits + i)));
                    },
                    20s);
            }
            ::_exit(0);
        }
    }
    for (int program = 0, status = 0; program < kPrograms; ++program) {
        ::wait(&status);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(ProbeRecordStore(file).load().consecutiveFailures, kPrograms * kEdits);
    EXPECT_EQ(ProbeRecordStore(file).load().expectedResets.size(), std::size_t{kPrograms * kEdits});

    const auto written = fs::last_write_time(file);
    ProbeRecordStore(file).edit([](ProbeRecord&) {});
    EXPECT_EQ(fs::last_write_time(file), written);
    const auto codeOf = [&](const fs::path& store) {
        try {
            ProbeRecordStore(store).edit([](ProbeRecord& record) { ++record.consecutiveFailures; });
        } catch (const fs::filesystem_error& error) {
            return error.code();
        }
        return std::error_code();
    };
    const auto lock = FileLock::acquire(file.string() + ".lock", 0ms);
    EXPECT_EQ(codeOf(file), std::errc::device_or_resource_busy);
    EXPECT_EQ(codeOf(file / "below"), std::errc::not_a_directory);
}

TEST(ProbeRecord, SpacesFailuresEverWider) {
    const std::tuple<int, std::optional<Seconds>, bool> cases[] = {
        {0, std::nullopt, true}, {0, 0s, true},       {1, std::nullopt, true}, {1, 599s, false},
        {1, 600s, true},         {2, 1199s, false},   {2, 1200s, true},        {4, 4799s, false},
        {1000, 4799s, false},    {1000, 4800s, true}, {3, -1s, false},  // clocks differ
        {3, -61s, true},                                                // it was set back
    };
    for (const auto& [failures, ago, mayRetry] : cases) {
        ProbeRecord record{.consecutiveFailures = failures};
        record.lastProbeAt = ago ? std::optional(kNow - *ago) : std::nullopt;
        EXPECT_EQ(mayRetryProbe(record, 300s, kNow), mayRetry) << failures << ' ' << ago.value_or(0s).count();
    }
}

}  // namespace
}  // namespace vorn
