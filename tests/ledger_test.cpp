#include "core/data/ledger.hpp"

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;

const WindowKind kSession = WindowKind::session();

UsageWindow session(double used, Seconds after = 0s, Seconds resetsIn = 3h) {
    UsageWindow window = reading(kSession, used, resetsIn);
    window.observedAt = kNow + after;
    return window;
}

double held(const Ledger& ledger) {
    return ledger.state().windows().at(kSession).usedPercent;
}

/// What the next program knows: the record, and the history that got what was to be recorded.
struct Files {
    ProbeRecord record;
    std::vector<UsageWindow> history;

    [[nodiscard]] Ledger start(Instant now) const {
        Ledger ledger;
        ledger.begin(history, now);
        ledger.takeRecord(record, record.expectedResets, now);
        return ledger;
    }
    void keep(const Ledger& ledger, const Ledger::Taken& taken) {
        if (!taken.toRecord.empty()) {
            history = taken.toRecord;
        }
        ledger.remember(record);
    }
};

/// A look of a process of its own.
struct Look {
    enum class Source : std::uint8_t { client, line } source;
    double used;
    Seconds after;
    double believed;
    bool doubts = false;
};

void expectLooks(const char* name, Files files, const std::vector<Look>& looks) {
    SCOPED_TRACE(name);
    for (const Look& look : looks) {
        SCOPED_TRACE(look.after.count());
        const Instant now = kNow + look.after;
        Ledger ledger = files.start(now);
        const std::vector readings{session(look.used, look.after)};
        files.keep(ledger, look.source == Look::Source::client ? ledger.takeAnswer({.windows = readings}, now)
                                                               : ledger.takeSnapshot(readings, now));
        EXPECT_EQ(held(ledger), look.believed);
        EXPECT_EQ(ledger.doubts(), look.doubts);
        EXPECT_EQ(files.history.front().usedPercent, look.believed);
    }
}

TEST(Ledger, ConfirmsAFallAcrossProcesses) {
    using enum Look::Source;
    const Files before{.history = {session(40)}};
    expectLooks("the client twice", before,
                {{client, 5, 10s, 40, true}, {client, 5, 69s, 40, true}, {client, 5, 129s, 5}});
    expectLooks("the status line, again and again: the first look counts", before,
                {{line, 5, 10s, 40, true}, {line, 5, 35s, 40, true}, {line, 6, 60s, 40, true}, {line, 6, 70s, 6}});
    expectLooks("the status line, then the client", before, {{line, 5, 10s, 40, true}, {client, 5, 71s, 5}});
    expectLooks("an outlier", before, {{line, 5, 10s, 40, true}, {line, 41, 20s, 41}, {line, 5, 80s, 41, true}});
    expectLooks("falling further is another fall", before,
                {{line, 20, 10s, 40, true}, {line, 5, 60s, 40, true}, {line, 5, 80s, 40, true}, {line, 5, 120s, 5}});
    const Files announced{.record = {.expectedResets = {kSession}}, .history = {session(40)}};
    expectLooks("announced, once", announced, {{line, 5, 10s, 5}, {line, 50, 20s, 50}, {client, 5, 30s, 50, true}});
}

TEST(Ledger, KeepsInTheRecordWhatTheNextOneNeeds) {
    Ledger ledger;
    ledger.begin(std::vector{session(40)}, kNow);
    EXPECT_TRUE(ledger.takeAnswer({.windows = {session(5, 10s)}}, kNow + 10s).isMemoryChanged);
    ProbeRecord record{.lastProbeAt = kNow, .consecutiveFailures = 3};
    ledger.remember(record);
    EXPECT_EQ(record, (ProbeRecord{.lastProbeAt = kNow,
                                   .consecutiveFailures = 3,
                                   .readings = {session(5, 10s)},
                                   .pendingDrops = {session(5, 10s)}}));
    // Nothing that is no fall any more counts for another program.
    for (const UsageWindow& now : {session(12, 20s), session(40, 20s, 8h), session(40, 5s)}) {
        EXPECT_FALSE(
            (Files{.record = {.pendingDrops = record.pendingDrops}, .history = {now}}).start(kNow + 30s).doubts());
    }
    EXPECT_FALSE(ledger.takeAnswer({.windows = {session(41, 20s)}}, kNow + 20s) == Ledger::Taken());
    ledger.remember(record);
    EXPECT_TRUE(record.pendingDrops.empty());
}

TEST(Ledger, JudgesEarlyNewsByWhatWasBefore) {
    Ledger ledger;
    const UsageInsights insights{.observedAt = kNow};
    EXPECT_EQ(ledger.takeSnapshot({session(5, 1s)}, kNow + 1s), Ledger::Taken());
    EXPECT_EQ(held(ledger), 5) << "shown at once";
    ProbeRecord other{.readings = {session(6, 2s)}};
    ledger.takeRecord(other, {WindowKind::week()}, kNow + 2s);
    ledger.takeAnswer({.windows = {session(6, 70s), reading(WindowKind::week(), 20, 90h)}, .insights = insights},
                      kNow + 70s);
    EXPECT_FALSE(ledger.hasBegun());

    const auto results = ledger.begin(std::vector{session(40), reading(WindowKind::week(), 80, 90h)}, kNow + 70s);
    ASSERT_EQ(results.size(), 3U);
    EXPECT_EQ(results[0].toRecord.at(0).usedPercent, 40);
    EXPECT_TRUE(results[1].isRecordedElsewhere);
    EXPECT_EQ(results[2].toRecord.at(0).usedPercent, 6) << "a minute after the first low reading";
    EXPECT_EQ(results[2].toRecord.at(1).usedPercent, 20) << "announced after the record's answer";
    EXPECT_TRUE(ledger.hasBegun());
    EXPECT_EQ(ledger.state().insights(), insights);
}

TEST(Ledger, TakesNothingOldFromARecord) {
    const ProbeRecord record{.readings = {session(9, -6h, -1h), session(50, 1h)}};
    Ledger ledger;
    ledger.begin({}, kNow);
    EXPECT_TRUE(ledger.takeRecord(record, {}, kNow).toRecord.empty());
    EXPECT_TRUE(ledger.state().windows().empty());
}

}  // namespace
}  // namespace vorn
