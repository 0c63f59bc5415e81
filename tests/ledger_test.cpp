#include "core/data/ledger.hpp"

#include <algorithm>
#include <span>
#include <utility>

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
    UsageWindow week = reading(WindowKind::week(), 20, 90h);
    week.observedAt = kNow + 70s;
    ledger.takeAnswer({.windows = {session(6, 70s), week}, .insights = insights}, kNow + 70s);
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

ClientAnswer answered(std::vector<UsageWindow> windows, Seconds after, Seconds fetchedBefore = 0s) {
    for (UsageWindow& window : windows) {
        window.observedAt = kNow + after - fetchedBefore;
    }
    return {.windows = std::move(windows),
            .fetchedAt = kNow + after - fetchedBefore,
            .answeredAt = kNow + after,
            .isComplete = true};
}

UsageWindow told(const UsageWindow& by, DataSource source) {
    UsageWindow window = by;
    window.source = source;
    return window;
}

TEST(Ledger, TakesNothingTwiceThatIsNotNewer) {
    Ledger ledger;
    ledger.begin(std::vector{session(90)}, kNow);
    EXPECT_TRUE(ledger.takeAnswer(answered({session(60)}, 30s, 60s), kNow + 30s).toRecord.empty()) << "older";
    EXPECT_EQ(held(ledger), 90);
    // A fall in an answer from the cache, told twice with one time, is one look at it.
    const ClientAnswer cached = answered({session(60)}, 100s, 70s);
    EXPECT_EQ(ledger.takeAnswer(cached, kNow + 100s).toRecord.size(), 1U);
    EXPECT_TRUE(ledger.takeAnswer(cached, kNow + 400s).toRecord.empty());
    EXPECT_EQ(held(ledger), 90);
    EXPECT_TRUE(ledger.doubts());
    EXPECT_EQ(ledger.doubtsSince(), kNow + 30s);
}

TEST(Ledger, BelievesAFallThatTheOtherSourceShowsToo) {
    for (const auto& [second, believed] : {std::pair(told(session(5, 20s), DataSource::statusLine), 5.0),
                                           std::pair(told(session(5, 20s), DataSource::usageCommand), 40.0),
                                           std::pair(told(session(38, 20s), DataSource::statusLine), 40.0),
                                           std::pair(told(session(5, 9s), DataSource::statusLine), 40.0)}) {
        Ledger ledger;
        ledger.begin(std::vector{session(40)}, kNow);
        ledger.takeAnswer({.windows = {session(5, 10s)}}, kNow + 10s);
        ledger.takeSnapshot({second}, kNow + 20s);
        EXPECT_EQ(held(ledger), believed) << second.usedPercent << "%, " << rawValue(second.source);
    }
    // Turns every twenty seconds never lie a minute apart; the first of them counts.
    Ledger busy;
    busy.begin(std::vector{session(40)}, kNow);
    for (const Seconds after : {20s, 40s, 60s}) {
        busy.takeSnapshot({session(5, after)}, kNow + after);
        EXPECT_EQ(held(busy), 40);
    }
    busy.takeSnapshot({session(6, 80s)}, kNow + 80s);
    EXPECT_EQ(held(busy), 6);
    EXPECT_FALSE(busy.doubts());
}

TEST(Ledger, LetsGoOfALimitThatIsNoLongerListed) {
    const WindowKind opus = WindowKind::weekModel("Opus");
    const std::vector before{session(40), reading(opus, 90, 90h)};
    const auto isThere = [&](const Ledger& ledger, Seconds after) {
        return std::ranges::count(ledger.windows(kNow + after), opus, &UsageWindow::kind) == 1;
    };
    Ledger ledger;
    ledger.begin(before, kNow);
    ledger.takeAnswer(answered({session(41)}, 60s), kNow + 60s);
    EXPECT_TRUE(isThere(ledger, 60s)) << "once is not enough";
    ledger.takeAnswer(answered({session(42)}, 90s), kNow + 90s);
    EXPECT_TRUE(isThere(ledger, 90s)) << "nor twice within a minute";
    ClientAnswer partial = answered({session(42)}, 300s);
    partial.isComplete = false;
    ledger.takeAnswer(partial, kNow + 300s);
    EXPECT_TRUE(isThere(ledger, 300s)) << "nor an answer that need not list all";
    ledger.takeAnswer(answered({session(43)}, 1000s, 500s), kNow + 1000s);
    EXPECT_TRUE(isThere(ledger, 1000s)) << "nor one from the cache";
    ledger.takeAnswer(answered({session(43)}, 1060s), kNow + 1060s);
    EXPECT_FALSE(isThere(ledger, 1060s));

    ProbeRecord record;
    ledger.remember(record);
    Ledger next;
    next.begin(before, kNow + 1100s);
    next.takeRecord(record, {}, kNow + 1100s);
    EXPECT_FALSE(isThere(next, 1100s)) << "nor does it come back out of the history";
    next.takeAnswer(answered({session(44), reading(opus, 1, 90h)}, 1200s), kNow + 1200s);
    EXPECT_TRUE(isThere(next, 1200s));
    // The session is always there; another account's answers are no second ones.
    ClientAnswer other = answered({reading(WindowKind::week(), 20, 90h)}, 1300s);
    next.takeAnswer(other, kNow + 1300s);
    other = answered({reading(WindowKind::week(), 20, 90h)}, 1400s);
    other.account = "another";
    next.takeAnswer(other, kNow + 1400s);
    EXPECT_EQ(next.windows(kNow + 1400s).size(), 3U);
}

TEST(Ledger, KnowsOneLimitByAllItsNames) {
    Ledger ledger;
    ledger.begin(std::vector{reading(WindowKind::weekModel("Sonnet only"), 10, 90h)}, kNow);
    UsageWindow sonnet = reading(WindowKind::weekModel("sonnet"), 12, 90h);
    sonnet.observedAt = kNow + 60s;
    const Ledger::Taken taken = ledger.takeSnapshot({sonnet}, kNow + 60s);
    ASSERT_EQ(ledger.windows(kNow + 60s).size(), 1U);
    EXPECT_EQ(ledger.windows(kNow + 60s)[0].kind, WindowKind::weekModel("Sonnet"));
    EXPECT_EQ(taken.toRecord.at(0).kind, WindowKind::weekModel("Sonnet"));
}

TEST(Ledger, IsAtTheLimitWhenATurnWasRefused) {
    const auto used = [](const Ledger& ledger, Seconds after) {
        return ledger.windows(kNow + after).at(0).usedPercent;
    };
    const RefusedTurn refused{.at = kNow + 60s, .kind = kSession, .resetsAt = kNow + 3h};
    Ledger ledger;
    ledger.begin(std::vector{session(93)}, kNow);
    EXPECT_TRUE(ledger.takeRefusals(std::span(&refused, 1), kNow + 70s));
    EXPECT_FALSE(ledger.takeRefusals(std::span(&refused, 1), kNow + 80s));
    EXPECT_EQ(used(ledger, 80s), 100);
    EXPECT_EQ(held(ledger), 93) << "which is what the history gets";
    ledger.takeSnapshot({session(99, 90s)}, kNow + 90s);
    EXPECT_EQ(used(ledger, 90s), 100) << "rounded, or a moment old";
    EXPECT_EQ(used(ledger, 3h), 0) << "and until its reset";

    ledger.announce({kSession});
    ledger.takeSnapshot({session(2, 600s)}, kNow + 600s);
    EXPECT_EQ(used(ledger, 600s), 2) << "reset early";

    Ledger fresh;
    fresh.begin({}, kNow);
    fresh.takeRefusals(std::span(&refused, 1), kNow + 70s);
    EXPECT_EQ(fresh.windows(kNow + 70s),
              (std::vector<UsageWindow>{{kSession, 100, kNow + 3h, kNow + 60s, DataSource::statusLine}}));
    EXPECT_TRUE(fresh.windows(kNow + 4h).empty());
}

TEST(Ledger, TellsOfAResetTimeThatMoved) {
    const auto moved = [](const UsageWindow& next) {
        Ledger ledger;
        ledger.begin(std::vector{session(40)}, kNow);
        return ledger.takeSnapshot({next}, next.observedAt).moved.size();
    };
    EXPECT_EQ(moved(session(41, 60s, 4h)), 1U);
    EXPECT_EQ(moved(session(41, 60s, 3h + 200s)), 0U) << "rounded";
    EXPECT_EQ(moved(session(2, 60s, 5h)), 0U) << "reset early";
    EXPECT_EQ(moved(session(2, 3h, 8h)), 0U) << "the next one";
}

}  // namespace
}  // namespace vorn
