#include "model/usage_model.hpp"

#include <QTimer>
#include <array>
#include <chrono>
#include <filesystem>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/data/vorn_paths.hpp"
#include "model/background_activity.hpp"
#include "model/background_probe.hpp"
#include "model/model_parts.hpp"
#include "model/notifier.hpp"
#include "platform/notification_center.hpp"
#include "tests/support/child_watch.hpp"
#include "tests/support/model_world.hpp"
#include "tests/support/readings.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::kNow;
using test::waitFor;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Phase = UsageModel::Phase;
using Scope = PlannedReset::Scope;

ClientAnswer answer(std::vector<UsageWindow> windows) {
    return {.windows = std::move(windows)};
}

ProbeFailure failure(const char* message) {
    return {.kind = ProbeFailure::Kind::other, .detail = message};
}

class UsageModelTest : public testing::Test, public test::ModelWorld {
protected:
    UsageModelTest() : ModelWorld(kNow) {}

    /// A session that has an hour to go from `kNow` on, as it is read now.
    [[nodiscard]] UsageWindow session(double usedPercent) const {
        return {WindowKind::session(), usedPercent, kNow + 1h, now};
    }
    void clientSays(double sessionPercent) {
        client = [this, sessionPercent] {
            return answer({session(sessionPercent)});
        };
    }
    void clientFails(const char* message) {
        client = [message] {
            return failure(message);
        };
    }
    void relayWrites(double sessionPercent, Instant at) {
        ++snapshotVersion;
        snapshot = StatusLineSnapshot{.observedAt = at, .rateLimits = {.fiveHour = {{sessionPercent, kNow + 1h}}}};
    }
    [[nodiscard]] double used() const {
        return model->session() != nullptr ? model->session()->window.usedPercent : -1;
    }
};

TEST_F(UsageModelTest, IsFailedUntilTheFirstReading) {
    clientFails("no claude");
    start();
    EXPECT_EQ(model->phase(), (Phase{Phase::Kind::failed, "no claude"}));
    EXPECT_EQ(model->lastProbeError(), "no claude");
    EXPECT_EQ(model->lastProbeAt(), now);

    relayWrites(40, now);
    pass(5s);
    EXPECT_EQ(model->phase(), Phase{Phase::Kind::ready});
    EXPECT_EQ(used(), 40);
    EXPECT_EQ(model->lastStatusLineAt(), kNow);
    model->probe();
    EXPECT_EQ(model->phase(), Phase{Phase::Kind::ready});
    EXPECT_EQ(model->lastProbeError(), "no claude");

    clientSays(41);
    model->probe();
    EXPECT_EQ(model->lastProbeError(), std::nullopt);
    EXPECT_EQ(used(), 41);
}

TEST_F(UsageModelTest, ParsesASnapshotOnceAndAtMostOnceATick) {
    start();
    relayWrites(10, now);
    pass(60s);
    EXPECT_EQ(snapshotReads, 1);

    snapshot.reset();  // not to be understood
    ++snapshotVersion;
    pass(60s);
    EXPECT_EQ(snapshotReads, 2);

    for (int i = 0; i < 250; ++i) {
        relayWrites(11 + i / 25.0, now);
    }
    pass(5s);
    EXPECT_EQ(snapshotReads, 3);
    EXPECT_NEAR(used(), 21, 0.1);

    // From before the clock was set back: it would seem newer than everything that comes.
    relayWrites(90, now + 1h);
    pass(5s);
    EXPECT_NEAR(used(), 21, 0.1);
    EXPECT_LE(model->lastStatusLineAt(), now);
}

TEST_F(UsageModelTest, KeepsTheBreakdownThatAnAnswerDoesNotHave) {
    start();
    const UsageInsights insights{.periods = {{.label = "Last 24h"}}, .observedAt = now};
    client = [&] {
        return ClientAnswer{.windows = {session(3)}, .insights = insights};
    };
    unansweredProbe(client());
    EXPECT_EQ(model->insights(), insights);
    clientSays(4);
    model->probe();
    EXPECT_EQ(model->insights(), insights);
}

TEST_F(UsageModelTest, NeverAsksTwiceAtOnce) {
    start();
    EXPECT_TRUE(model->isProbing());
    model->probe();
    model->refreshIfStale();
    model->redeemReset(Scope::all);
    pass(1h);  // the client hangs: everything else goes on
    EXPECT_EQ(probes.size(), 1U);
    EXPECT_EQ(model->now(), now);
    EXPECT_GT(scans.size(), 100U);
    preferences.setClaudePathOverride("/another");
    model->probeAnew();
    unansweredProbe(failure("That one hangs."));
    EXPECT_EQ(probes.size(), 2U);
    EXPECT_EQ(overridePath, "/another");
    unansweredProbe(answer({session(7)}));
    EXPECT_FALSE(model->isProbing());
    EXPECT_EQ(model->lastProbeAt(), now);

    clientSays(8);
    const struct {
        Seconds sinceProbe;
        Seconds sinceSnapshot;
        bool asks;
    } cases[] = {{60s, 1h, false}, {61s, 1h, true}, {61s, 60s, false}, {2min, 61s, true}};
    for (const auto& c : cases) {
        model->probe();
        now += c.sinceProbe;
        relayWrites(8, now - c.sinceSnapshot);
        tick();
        const auto before = probes.size();
        model->refreshIfStale();
        EXPECT_EQ(probes.size() - before, c.asks ? 1U : 0U) << c.sinceProbe.count();
    }
}

TEST_F(UsageModelTest, AsksOutOfTurnAfterABurstAndForAFall) {
    preferences.setRefreshMinutes(15);
    clientSays(40);
    start();
    pass(60s);
    const auto before = probes.size();
    const auto asked = [&] {
        return probes.size() - before;
    };
    transcripts = [this] {
        return ActivitySummary(std::vector(20, ActivityEvent{.timestamp = now - 5s, .tokens = {.input = 1}}));
    };
    pass(35s);
    EXPECT_EQ(asked(), 0U) << "within two minutes of the last question";
    pass(30s);
    EXPECT_EQ(asked(), 1U);
    transcripts = [] {
        return ActivitySummary();
    };
    pass(3min);
    EXPECT_EQ(asked(), 1U) << "quiet again";

    relayWrites(5, now);
    clientSays(5);
    pass(5s);
    EXPECT_EQ(asked(), 2U);
    EXPECT_EQ(used(), 5) << "both sources say so";

    // Not while it rests after a failure.
    clientFails("gone");
    model->probe();
    transcripts = [this] {
        return ActivitySummary(std::vector(30, ActivityEvent{.timestamp = now, .tokens = {.input = 1}}));
    };
    pass(10min);
    EXPECT_EQ(asked(), 3U);
}

TEST_F(UsageModelTest, BacksOffFromAClientThatHasOnlyOldFigures) {
    preferences.setRefreshMinutes(5);
    client = [this] {
        ClientAnswer old = answer({session(40)});
        old.windows[0].observedAt = now - 10min;
        old.fetchedAt = now - 10min;
        old.answeredAt = now;
        return old;
    };
    start();
    EXPECT_EQ(used(), 40) << "better than nothing";
    EXPECT_EQ(model->answer().asking.figuresOf, now - 10min);
    EXPECT_EQ(model->answer().asking.retryAt, now + 10min);
    pass(9min);
    EXPECT_EQ(probes.size(), 1U);
    client = [this] {
        ClientAnswer fresh = answer({session(41)});
        fresh.fetchedAt = fresh.answeredAt = now;
        return fresh;
    };
    pass(2min);
    EXPECT_EQ(probes.size(), 2U);
    EXPECT_EQ(model->answer().asking.figuresOf, std::nullopt);
}

TEST_F(UsageModelTest, GoesOnWhileAScanHangs) {
    transcripts = nullptr;
    relayWrites(10, now);
    start();
    relayWrites(20, now + 40s);
    pass(10min);
    EXPECT_EQ(scans.size(), 1U);
    EXPECT_EQ(used(), 20);
    EXPECT_THAT(model->activity().events(), IsEmpty());
    EXPECT_EQ(model->answer().activity, nullptr);

    unansweredScan(test::activity({{-5min, 600}}));
    EXPECT_EQ(model->activity().events().size(), 1U);
    pass(5s);
    EXPECT_EQ(scans.size(), 2U);
    EXPECT_NE(model->answer().activity, nullptr);
}

TEST_F(UsageModelTest, LeavesTheTranscriptsAloneWhenToldTo) {
    preferences.setUseLocalActivity(false);
    transcripts = [] {
        return test::activity({{-5min, 600}});
    };
    start();
    pass(10min);
    EXPECT_EQ(scans.size(), 1U);  // the first comes in any case
    EXPECT_FALSE(model->answer().usesActivity);
    preferences.setUseLocalActivity(true);
    pass(5s);
    EXPECT_EQ(scans.size(), 2U);
    EXPECT_TRUE(model->answer().usesActivity);
}

TEST_F(UsageModelTest, NotifiesOfWhatChangedAndOfNothingElse) {
    clientSays(12);
    start();
    int heard = 0;
    QObject::connect(model.get(), &UsageModel::changed, [&] { ++heard; });
    pass(30s);
    model->setBankedResets(0);
    model->removePlannedReset("none");
    EXPECT_EQ(heard, 3);
    clientSays(13);
    now += 1s;
    model->probe();
    EXPECT_EQ(heard, 5);  // being asked, and the answer
}

// ---- What may be concluded ----

class CountingCenter final : public NotificationCenter {
public:
    void requestAuthorization(std::function<void(bool)> onAnswer) override { onAnswer(true); }
    void post(const Notice& notice) override { titles.push_back(notice.title.toStdString()); }
    [[nodiscard]] QString problem() const override { return {}; }
    std::vector<std::string> titles;
};

class UsageModelNotices : public UsageModelTest {
protected:
    UsageModelNotices() { notifier.requestAuthorization({}); }
    void listen() {
        QObject::connect(model.get(), &UsageModel::changed,
                         [this] { notifier.evaluate(model->answer(), preferences); });
    }
    CountingCenter center;
    Notifier notifier{&center};
};

TEST_F(UsageModelNotices, ComeOnlyOfWhatIsKnownToHoldStill) {
    // Three quarters went in the first hour of this session, and nothing since: the average alone would warn.
    const auto at = [&](Seconds ago) {
        return UsageWindow{WindowKind::session(), 75, now + 2h, now - ago};
    };
    HistoryStore store(directory / "history.jsonl");
    for (Seconds ago = 2h; ago > 0s; ago -= 10min) {
        store.record(std::vector{at(ago)}, now - ago);
    }
    ASSERT_TRUE(record.save({.lastProbeAt = now - 1min, .readings = {at(1min)}}));
    client = nullptr;
    transcripts = nullptr;
    listen();
    model->start();
    EXPECT_FALSE(model->answer().isJudged);
    EXPECT_EQ(model->answer().head, std::nullopt);
    ASSERT_NE(model->answer().session(), nullptr);
    EXPECT_EQ(model->answer().session()->window.usedPercent, 75);
    EXPECT_EQ(model->answer().session()->ratePerHour, std::nullopt);
    waitFor([&] { return model->history().size() == 12; });
    EXPECT_FALSE(model->answer().isJudged) << "the activity may tell of another rate";
    unansweredScan(std::nullopt);
    EXPECT_TRUE(model->answer().isJudged);
    EXPECT_EQ(model->answer().session()->ratePerHour, 0);
    EXPECT_THAT(center.titles, IsEmpty());

    // What is true then has not been used up.
    for (double used = 76; used < 96; ++used) {
        ++snapshotVersion;
        snapshot = StatusLineSnapshot{.observedAt = now, .rateLimits = {.fiveHour = {{used, kNow + 2h}}}};
        pass(1min);
    }
    EXPECT_THAT(center.titles, ElementsAre(HasSubstr("Session: limit in ~")));
}

TEST_F(UsageModelNotices, DoNotWaitForeverForTheTranscripts) {
    client = nullptr;
    transcripts = nullptr;
    start();
    EXPECT_FALSE(model->answer().isJudged);
    pass(10s);
    EXPECT_TRUE(model->answer().isJudged);
}

TEST_F(UsageModelNotices, AreNotPostedOfADemonstration) {
    listen();
    model->startDemo(demo::makeDemo(demo::Scenario::limited, now));
    EXPECT_TRUE(model->answer().isDemo);
    EXPECT_THAT(center.titles, IsEmpty());
}

// ---- The reset plan ----

const PlannedReset kSoon{.id = "6F9619FF-8B86-D011-B42D-00CF4FC964FF", .date = kNow + 30min, .scope = Scope::all};
const PlannedReset kOther{.id = "00000000-8B86-D011-B42D-00CF4FC964FF", .date = kNow + 40min, .scope = Scope::week};

TEST_F(UsageModelTest, EditsThePlanThatAnotherProgramEditsToo) {
    clientSays(10);
    start();
    model->addPlannedReset(kSoon);
    EXPECT_EQ(plan.load().planned, std::vector{kSoon});
    EXPECT_EQ(model->session()->plannedResetAt, kSoon.date);

    plan.edit([](ResetPlan& stored) {
        stored.planned.push_back(kOther);
        stored.banked = 1;
    });
    model->removePlannedReset(kSoon.id);  // knows of the other at once
    EXPECT_THAT(model->resetPlan().planned, ElementsAre(kOther));
    plan.edit([](ResetPlan& stored) { stored.banked = 2; });
    pass(5s);
    EXPECT_EQ(model->resetPlan().banked, 2);

    model->redeemReset(Scope::session);
    model->redeemReset(Scope::session);
    model->redeemReset(Scope::session);
    EXPECT_EQ(model->resetPlan(), (ResetPlan{.planned = {kOther}, .banked = 0}));
    EXPECT_EQ(plan.load(), model->resetPlan());
}

TEST_F(UsageModelTest, BelievesTheFallAfterARedemption) {
    const std::array<std::function<void()>, 2> redemptions{[&] { model->redeemReset(Scope::all); },
                                                           [&] {
                                                               model->redeemedElsewhere(Scope::session);
                                                           }};
    for (const auto& redeem : redemptions) {
        clientSays(80);
        revive();
        start();
        client = nullptr;
        now += 10s;
        redeem();
        EXPECT_TRUE(model->isProbing());
        waitFor([&] { return record.load().expectedResets.contains(WindowKind::session()); });
        unansweredProbe(answer({session(5)}));
        EXPECT_EQ(used(), 5);
        waitFor([&] { return record.load().expectedResets.empty(); });
        now += 10s;
    }
    // Unannounced it takes a second reading.
    clientSays(80);
    model->probe();
    now += 10s;
    clientSays(5);
    model->probe();
    EXPECT_EQ(used(), 80);
}

TEST_F(UsageModelTest, KeepsAPlanThatCannotBeSaved) {
    clientSays(10);
    start();
    model->addPlannedReset(kSoon);
    fs::create_directory(directory / "away");
    fs::rename(directory / "reset-plan.json", directory / "away/plan");
    fs::create_directories(directory / "reset-plan.json/in the way");
    pass(5s);
    model->addPlannedReset(kOther);
    EXPECT_THAT(model->resetPlan().planned, testing::Contains(kOther));
    EXPECT_THAT(model->answer().unsaved.plan, Not(IsEmpty()));
    pass(30s);
    EXPECT_THAT(model->resetPlan().planned, testing::Contains(kOther));

    fs::remove_all(directory / "reset-plan.json");
    fs::rename(directory / "away/plan", directory / "reset-plan.json");
    pass(35s);
    EXPECT_EQ(model->answer().unsaved, Unsaved());
    EXPECT_THAT(plan.load().planned, ElementsAre(kSoon, kOther));
    EXPECT_EQ(model->resetPlan(), plan.load());
}

// ---- What the terminal remembered ----

TEST_F(UsageModelTest, GoesOnWithTheFailuresOfOtherPrograms) {
    ASSERT_TRUE(record.save({.lastProbeAt = now - 1min, .consecutiveFailures = 2, .failure = failure("offline")}));
    client = nullptr;
    start();
    EXPECT_EQ(model->lastProbeError(), "offline");
    EXPECT_EQ(model->lastProbeAt(), now - 1min);
    unansweredProbe(failure("still offline"));  // the first is sent in any case
    probes.clear();
    pass(41min);
    EXPECT_THAT(probes, ElementsAre(kNow + 40min));

    // Somebody else got an answer: no need to ask for it.
    unansweredProbe(failure("offline again"));
    waitFor([&] { return record.load().consecutiveFailures == 4; });
    pass(1min);
    ASSERT_TRUE(record.save({.lastProbeAt = now, .readings = {session(33)}}));
    probes.clear();
    waitFor([&] { return pass(5s), model->lastProbeError() == std::nullopt; });
    EXPECT_EQ(used(), 33);
    EXPECT_EQ(model->phase().kind, Phase::Kind::ready);
    EXPECT_THAT(probes, IsEmpty());
}

TEST_F(UsageModelTest, CountsAFallThatAnotherProgramSaw) {
    {
        HistoryStore store(directory / "history.jsonl");
        store.record(std::vector{session(70)}, now);
    }
    now += 2min;
    ASSERT_TRUE(record.save({.lastProbeAt = now, .readings = {session(9)}}));
    now += 2min;
    client = nullptr;
    start();
    EXPECT_EQ(used(), 70);
    unansweredProbe(answer({session(9)}));
    EXPECT_EQ(used(), 9);
}

TEST_F(UsageModelTest, BelievesAnAnnouncedResetThatCameBeforeTheStart) {
    {
        HistoryStore store(directory / "history.jsonl");
        store.record(std::vector{session(80)}, now);
    }
    ASSERT_TRUE(
        record.save({.lastProbeAt = now, .readings = {session(80)}, .expectedResets = {WindowKind::session()}}));
    now += 1min;
    relayWrites(5, now);
    client = nullptr;
    start();
    EXPECT_EQ(used(), 5);
    waitFor([&] { return record.load().expectedResets.empty(); });
}

TEST_F(UsageModelTest, WritesNothingWhenNothingChanged) {
    clientSays(10);
    start();
    model->shutDown();
    model->start();
    pass(9min);  // before the heartbeat
    model->shutDown();
    const auto history = fileStamp(directory / "history.jsonl");
    const auto probing = fileStamp(directory / "probe.json");
    ASSERT_TRUE(history && probing);
    QCoreApplication::processEvents();
    model->start();
    clientSays(10);
    model->probe();
    model->shutDown();
    EXPECT_EQ(fileStamp(directory / "history.jsonl"), history);
    EXPECT_EQ(fileStamp(directory / "probe.json"), probing);
    EXPECT_FALSE(fs::exists(directory / "reset-plan.json"));
}

// ---- Bad worlds ----

TEST_F(UsageModelTest, MovesAgainAfterTheClockWasSetBack) {
    clientSays(10);
    start();
    relayWrites(11, now);
    pass(20min);
    now -= 24h;
    probes.clear();
    scans.clear();
    clientSays(12);
    tick();
    EXPECT_THAT(probes, ElementsAre(now));
    EXPECT_THAT(scans, ElementsAre(now));
    EXPECT_EQ(used(), 12);
    EXPECT_EQ(model->now(), now);
    relayWrites(13, now + 5s);
    pass(5s);
    EXPECT_EQ(used(), 13);
    EXPECT_EQ(model->history().back().usedPercent, 13);
    EXPECT_EQ(model->history().back().observedAt, now);
    clientSays(14);
    pass(5min);
    EXPECT_EQ(probes.size(), 2U);
    EXPECT_EQ(used(), 14);

    // The same for a run that begins after it.
    clientSays(15);
    revive();
    start();
    EXPECT_EQ(used(), 15);
    EXPECT_EQ(model->history().back().usedPercent, 15);
}

TEST_F(UsageModelTest, TellsThatTheHistoryCannotBeSaved) {
    fs::create_directories(directory / "history.jsonl/in the way");
    clientSays(10);
    start();
    waitFor([&] { return model->answer().unsaved.history; });
    EXPECT_EQ(model->history().size(), 1U);
    EXPECT_EQ(used(), 10);
    fs::remove_all(directory / "history.jsonl");
    clientSays(11);
    pass(5min);
    waitFor([&] { return !model->answer().unsaved.history; });
    revive();
    start();
    EXPECT_EQ(model->history().size(), 2U);
}

TEST_F(UsageModelTest, ReadsAndWritesNothingInADemonstration) {
    const auto demo = demo::makeDemo(demo::Scenario::atRisk, now);
    model->startDemo(demo);
    EXPECT_TRUE(model->isDemo());
    EXPECT_EQ(model->phase().kind, Phase::Kind::ready);
    EXPECT_EQ(model->assessments().size(), demo.windows.size());
    EXPECT_EQ(model->history(), demo.history);
    EXPECT_EQ(model->resetPlan(), demo.plan);
    EXPECT_TRUE(model->answer().isDemo);
    now += 1h;
    model->probe();
    model->refreshIfStale();
    model->addPlannedReset(kOther);
    model->redeemReset(Scope::all);
    model->redeemedElsewhere(Scope::all);
    model->recompute();
    model->shutDown();
    EXPECT_THAT(model->resetPlan().planned, testing::Contains(kOther));
    EXPECT_EQ(probes.size() + scans.size(), 0U);
    EXPECT_EQ(tick, nullptr);
    EXPECT_TRUE(fs::is_empty(directory.path()) || !fs::exists(directory / "reset-plan.json"));
    EXPECT_FALSE(fs::exists(directory / "probe.json"));
    EXPECT_FALSE(fs::exists(directory / "history.jsonl"));
}

TEST_F(UsageModelTest, TurnsIntoADemonstrationWhileAskingTheClient) {
    transcripts = nullptr;
    model->start();
    model->startDemo(demo::makeDemo(demo::Scenario::limited, now));
    const auto assessments = model->assessments();
    unansweredProbe(answer({session(1)}));
    unansweredScan(test::activity({{-5min, 600}}));
    model->shutDown();
    QCoreApplication::processEvents();
    model->recompute();
    EXPECT_EQ(model->assessments(), assessments);
}

// ---- The real sources ----

constexpr const char* kEndlessClient = "echo $$ >> \"$(dirname \"$0\")/pids\"; trap '' TERM; sleep 60 & wait; sleep 60";

/// Milliseconds that it took.
double timed(const std::function<void()>& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

class RealSources : public testing::Test {
protected:
    RealSources() {
        test::application();
        VornPaths::setRootOverride(m_directory / "home");
    }
    ~RealSources() override { VornPaths::setRootOverride({}); }

    /// Whether the endless client runs.
    [[nodiscard]] bool hasBegun() const {
        std::error_code notYet;
        return fs::file_size(m_directory / "pids", notYet) > 0 && !notYet;
    }

    test::TemporaryDirectory m_directory;
    QTimer m_ticker;
    const std::string m_client = m_directory.executable("endless", kEndlessClient).string();
    const test::ScopedEnvironment m_claude{"CLAUDE_CONFIG_DIR", (m_directory / "claude").c_str()};
    Preferences m_preferences{
        std::make_unique<QSettings>(QString::fromStdString(m_directory / "preferences.ini"), QSettings::IniFormat)};
};

TEST_F(RealSources, ReadTheClientAndTheTranscripts) {
    const auto reply = [](const char* id) {
        return R"({"type":"assistant","timestamp":")" + formatIso8601Milliseconds(systemNow()) + R"(","requestId":")" +
               id + R"(","cwd":"/p","message":{"id":")" + id +
               R"(","model":"claude-sonnet-4","usage":{"input_tokens":5,"output_tokens":7}}})"
               "\n";
    };
    m_directory.write("claude/projects/p/s.jsonl", reply("one") + reply("two"));
    const auto claude =
        m_directory.executable("client", R"(echo '{"is_error":false,"result":"Current session: 42% used"}')");
    m_preferences.setClaudePathOverride(QString::fromStdString(claude));
    fs::create_directories(VornPaths::statusLineSnapshot());  // no snapshot, however it looks
    UsageModel model(m_preferences, makeModelParts(m_ticker));
    model.start();
    waitFor([&] { return !model.isProbing() && model.activity().events().size() == 2 && model.answer().isJudged; });
    EXPECT_EQ(model.lastProbeError(), std::nullopt);
    ASSERT_NE(model.session(), nullptr);
    EXPECT_EQ(model.session()->window.usedPercent, 42);
    model.shutDown();
    EXPECT_EQ(HistoryStore(VornPaths::history()).all().size(), 1U);

    fs::remove(claude);  // uninstalled
    model.probe();
    waitFor([&] { return model.lastProbeError().has_value(); });
    EXPECT_EQ(model.phase().kind, Phase::Kind::ready);
}

TEST_F(RealSources, LeaveNoClientBehindWhenTheProcessEnds) {
    const test::ChildWatch watch(m_directory / "pids");
    {
        BackgroundProbe probe;
        probe.run({.claudePath = m_client}, [](const auto&) { ADD_FAILURE() << "an answer to nobody"; });
        waitFor([&] { return hasBegun(); });
        // It does not heed the request to terminate.
        EXPECT_LT(timed([&] { probe.shutDown(20s); }), 2000);
    }
    watch.expectNothingLeft();
    QCoreApplication::processEvents();
}

TEST_F(RealSources, AreDestroyedAtOnceWhileTheyWork) {
    m_preferences.setClaudePathOverride(QString::fromStdString(m_client));
    auto model = std::make_unique<UsageModel>(m_preferences, makeModelParts(m_ticker));
    QObject::connect(model.get(), &UsageModel::changed,
                     [&] { EXPECT_FALSE(model->lastProbeAt()) << "an answer to nobody"; });
    model->start();
    waitFor([&] { return hasBegun(); });
    EXPECT_LT(timed([&] { model.reset(); }), 500);
    // The thread goes its way; the client does not survive.
    waitFor([&] { return ::kill(std::stoi(test::readAll(m_directory / "pids")), 0) != 0; });

    auto activity = std::make_unique<BackgroundActivity>(m_directory / "nothing");
    activity->scan(systemNow(), [](const auto&) { ADD_FAILURE() << "an answer to nobody"; });
    EXPECT_LT(timed([&] { activity.reset(); }), 500);
    QCoreApplication::processEvents();
}

TEST(TimerTicker, RunsOnceAtATimeAndLeavesOthersAlone) {
    test::application();
    QTimer timer;
    int others = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++others; });
    const auto ticker = makeTimerTicker(timer);
    int former = 0;
    int present = 0;
    ticker->start(Seconds{0.001}, [&] { ++former; });
    waitFor([&] { return former > 1; });
    const int stand = former;
    ticker->start(Seconds{0.001}, [&] { ++present; });
    waitFor([&] { return present > 1; });
    EXPECT_EQ(former, stand);
    ticker->stop();
    const int end = present;
    waitFor([&, now = others] { return others > now + 3; });
    EXPECT_EQ(present, end);
}

TEST(BackgroundQueue, LeavesAReaderThatHangsToItself) {
    test::application();
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    std::vector<int> order;
    auto queue = std::make_unique<BackgroundQueue>(BackgroundQueue::Priority::low);
    const auto answering = [&](int number) {
        return [&order, number] {
            return [&order, number] {
                order.push_back(number);
            };
        };
    };
    ASSERT_TRUE(queue->run(answering(1)));
    ASSERT_TRUE(queue->run(answering(2)));
    waitFor([&] { return order.size() == 2; });
    EXPECT_THAT(order, ElementsAre(1, 2));

    const auto hasEnded = std::make_shared<std::atomic<bool>>(false);
    ASSERT_TRUE(queue->run([descriptor = pipe[0], hasEnded]() -> BackgroundQueue::Answer {
        char byte = 0;
        const bool isRead = ::read(descriptor, &byte, 1) == 1;
        *hasEnded = isRead;
        return [] {
            ADD_FAILURE() << "an answer to nobody";
        };
    }));
    EXPECT_FALSE(queue->waitForJobs(10ms));
    EXPECT_LT(timed([&] { queue.reset(); }), 100);
    ASSERT_EQ(::write(pipe[1], "", 1), 1);
    waitFor([&] { return hasEnded->load(); });
    QCoreApplication::processEvents();
    ::close(pipe[0]);
    ::close(pipe[1]);
}

}  // namespace
}  // namespace vorn
