#include <algorithm>
#include <cstdlib>
#include <set>
#include <span>
#include <sstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "core/data/history/history_store.hpp"
#include "core/data/ledger.hpp"
#include "core/data/probe_record.hpp"
#include "core/data/reset_plan_store.hpp"
#include "core/data/shared_choices.hpp"
#include "core/data/usage_insights.hpp"
#include "core/status_line/status_line_integration.hpp"
#include "core/status_line/status_line_snapshot.hpp"
#include "core/support/json.hpp"
#include "tests/support/temporary_directory.hpp"

/// A home that version 0.1.0 left: opened by this version nothing is lost, nothing is announced again, and what this
/// version writes there can still be read by 0.1.0.
namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace std::chrono;
using nlohmann::json;
using test::readAll;

constexpr Instant kNow = sys_days{2026y / November / 22} + 12h;
const WindowKind kSonnet = WindowKind::weekModel("Sonnet");
const char* const kOldKey = "week:Sonnet only";  // which the lines keep

/// A copy of the home as it was left at `kNow`.
class OldHome {
public:
    OldHome() {
        const std::string command = std::string("python3 '" VORN_OLD_HOME "' '") + m_directory.path().string() + "' " +
                                    std::to_string(static_cast<long>(secondsSince1970(kNow))) + " >/dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0);  // NOLINT(concurrency-mt-unsafe)
    }
    [[nodiscard]] fs::path file(const char* name) const { return m_directory.path() / "vorn" / name; }
    [[nodiscard]] StatusLineIntegration integration() const {
        return StatusLineIntegration({.settings = m_directory.path() / "claude/settings.json",
                                      .record = file("integration.json"),
                                      .bridge = file("bin/vorn-bridge")});
    }

private:
    test::TemporaryDirectory m_directory;
};

std::vector<json> linesOf(const fs::path& file) {
    std::vector<json> lines;
    std::istringstream text(readAll(file));
    for (std::string line; std::getline(text, line);) {
        lines.push_back(json::parse(line));
    }
    return lines;
}

/// What 0.1.0 sees of a record: it passes over members that it does not know.
json withoutNewMembers(json record, std::initializer_list<const char*> added) {
    for (const char* member : added) {
        record.erase(member);
    }
    return record;
}

UsageWindow held(const Ledger& ledger, const WindowKind& kind) {
    return ledger.state().windows().at(kind);
}

TEST(Update, EveryRecordIsReadInFull) {
    const OldHome home;
    const auto samples = HistoryStore(home.file("history.jsonl")).all();
    ASSERT_EQ(samples.size(), linesOf(home.file("history.jsonl")).size());
    EXPECT_EQ(std::ranges::count(samples, kOldKey, &HistorySample::kindKey), 4);

    const ProbeRecord probe = ProbeRecordStore(home.file("probe.json")).load();
    EXPECT_EQ(probe.lastProbeAt, kNow - 60s);
    EXPECT_EQ(probe.consecutiveFailures, 2);
    EXPECT_EQ(probe.failure, (ProbeFailure{.kind = ProbeFailure::Kind::commandFailed,
                                           .detail = "error: unknown option '--safe-mode'"}));
    EXPECT_EQ(probe.readings.size(), 3U);
    EXPECT_EQ(probe.expectedResets, std::set{kSonnet});
    EXPECT_FALSE(isProbeDue(probe, 10min, kNow)) << "a client that failed twice is not asked at once";

    const ResetPlan plan = ResetPlanStore(home.file("reset-plan.json")).load();
    EXPECT_EQ(plan.banked, 2);
    EXPECT_EQ(plan.pruned(kNow).planned.size(), 2U);

    const SharedChoices choices = loadSharedChoices(home.file("choices.json"));
    EXPECT_EQ(choices.refresh, 10min);
    EXPECT_FALSE(choices.useLocalActivity);

    const auto breakdown =
        decodeUsageInsights(json::parse(readAll(home.file("insights.json"))), DateCoding::secondsSince1970);
    EXPECT_EQ(breakdown.periods.at(0).findings.at(0).percent, 71);

    const auto snapshot = StatusLineSnapshot::read(home.file("statusline.json"));
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->windows().size(), 2U);
}

TEST(Update, TheFallThatWasSeenOnceStillNeedsASecondAnswer) {
    const OldHome home;
    HistoryStore history(home.file("history.jsonl"));
    const ProbeRecord probe = ProbeRecordStore(home.file("probe.json")).load();
    Ledger ledger;
    ledger.begin(history.newestCurrent(kNow), kNow);
    EXPECT_EQ(held(ledger, WindowKind::session()).usedPercent, 41);
    EXPECT_EQ(held(ledger, kSonnet).usedPercent, 12);

    const auto taken = ledger.takeRecord(probe, probe.expectedResets, kNow);
    EXPECT_TRUE(taken.isRecordedElsewhere) << "what was recorded is not recorded again";
    EXPECT_EQ(held(ledger, WindowKind::week()).usedPercent, 60.2);
    EXPECT_TRUE(ledger.doubts());
    EXPECT_EQ(ledger.state().expectingReset(), std::set{kSonnet}) << "an announced reset is still awaited";

    auto readings = probe.readings;
    for (UsageWindow& reading : readings) {
        reading.observedAt = kNow;
    }
    readings[2].usedPercent = 1;
    ledger.takeAnswer({.windows = readings}, kNow);
    EXPECT_EQ(held(ledger, WindowKind::week()).usedPercent, 31) << "confirmed";
    EXPECT_EQ(held(ledger, kSonnet).usedPercent, 1) << "announced";
    EXPECT_FALSE(ledger.doubts());
}

TEST(Update, WhatIsWrittenNowTheOldVersionReads) {
    const OldHome home;
    const auto linesBefore = linesOf(home.file("history.jsonl"));
    HistoryStore history(home.file("history.jsonl"));
    auto windows = StatusLineSnapshot::read(home.file("statusline.json"))->windows();
    history.record(windows, kNow);
    auto lines = linesOf(home.file("history.jsonl"));
    ASSERT_EQ(lines.size(), linesBefore.size() + 2);
    EXPECT_TRUE(std::ranges::equal(linesBefore, std::span(lines).first(linesBefore.size())));
    EXPECT_EQ(withoutNewMembers(lines.back(), {"o"}),
              json({{"k", "week"}, {"u", 61.2}, {"r", 1795664760}, {"t", 1795348709.875}}));

    const ProbeRecordStore probes(home.file("probe.json"));
    std::string recordBefore = readAll(home.file("probe.json"));
    for (std::size_t at = 0; (at = recordBefore.find("Sonnet only")) != std::string::npos;) {
        recordBefore.replace(at, std::string_view("Sonnet only").size(), "Sonnet");  // one name for all
    }
    probes.edit([](ProbeRecord& record) { record.pendingDrops.push_back(record.readings[1]); });
    EXPECT_EQ(withoutNewMembers(json::parse(readAll(home.file("probe.json"))), {"probedAt", "failure", "pendingDrops"}),
              json::parse(recordBefore));
    probes.edit([](ProbeRecord& record) {
        record = record.afterFailure(kNow + 250ms, {.kind = ProbeFailure::Kind::timedOut});
    });
    const auto failed = json::parse(readAll(home.file("probe.json")));
    EXPECT_EQ(failed["lastError"], "claude /usage didn't answer in time.");
    EXPECT_EQ(failed["lastProbeAt"], "2026-11-22T12:00:00Z");
    EXPECT_EQ(failed["consecutiveFailures"], 3);

    const ResetPlanStore plans(home.file("reset-plan.json"));
    const auto planBefore = json::parse(readAll(home.file("reset-plan.json")));
    plans.edit([](ResetPlan& plan) { --plan.banked; });
    plans.edit([](ResetPlan& plan) { ++plan.banked; });
    EXPECT_EQ(json::parse(readAll(home.file("reset-plan.json"))), planBefore);
}

TEST(Update, TheConnectedStatusLineStaysConnected) {
    const OldHome home;
    const auto integration = home.integration();
    EXPECT_EQ(integration.state().kind, StatusLineIntegration::State::Kind::installed);
    const auto own = integration.downstreamCommand();
    EXPECT_EQ(own, R"_(printf '%s' "$(basename "$PWD")")_");
    const std::string settings = readAll(integration.locations().settings);
    const std::string record = readAll(integration.locations().record);
    integration.install(kNow);
    EXPECT_EQ(readAll(integration.locations().settings), settings) << "connecting again changes nothing";
    EXPECT_EQ(readAll(integration.locations().record), record);
    integration.uninstall();
    EXPECT_EQ(*integration.readSettings().at("statusLine").member("command"), JSONValue(*own));
    EXPECT_EQ(integration.readSettings().size(), 4U);
}

}  // namespace
}  // namespace vorn
