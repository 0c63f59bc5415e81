#include "core/data/history/history_store.hpp"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <thread>

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/data/history/history_line.hpp"
#include "core/support/file.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace std::chrono;
using test::readAll;
using test::TemporaryDirectory;
using testing::SizeIs;

constexpr Instant kNow = sys_days{2026y / November / 22} + 12h;
constexpr Instant kReset = kNow + 3h;
constexpr milliseconds kLongPatience = 20s;

UsageWindow reading(double used, Instant observedAt, std::optional<Instant> resetsAt = kReset,
                    WindowKind kind = WindowKind::session()) {
    return {.kind = std::move(kind), .usedPercent = used, .resetsAt = resetsAt, .observedAt = observedAt};
}

void recordOne(HistoryStore& store, const UsageWindow& window) {
    store.record({&window, 1}, window.observedAt);
}

std::string lineOf(const UsageWindow& window) {
    std::string line;
    appendHistoryLine(line, HistorySample::of(window));
    return line;
}

TEST(HistoryStore, RecordsOnlyWhatSaysSomethingNew) {
    const std::tuple<const char*, UsageWindow, std::size_t> cases[] = {
        {"unchanged within the heartbeat", reading(20, kNow + 599s), 1},
        {"unchanged at the heartbeat", reading(20, kNow + 600s), 2},
        {"changed", reading(20.000001, kNow + 1s), 2},
        {"same time, changed", reading(30, kNow), 1},
        {"earlier", reading(30, kNow - 1s), 1},
        {"reset time drifts", reading(20, kNow + 1s, kReset + 299s), 1},
        {"reset time moves", reading(20, kNow + 1s, kReset - 300s), 2},
        {"reset time vanishes", reading(20, kNow + 1s, std::nullopt), 2},
        {"another kind", reading(20, kNow, kReset, WindowKind::weekModel("Opus")), 2},
        {"not a number JSON knows", reading(INFINITY, kNow + 1s), 1},
        {"never resets", reading(20, kNow + 1s, Instant{Seconds{INFINITY}}), 1},
    };
    for (const auto& [name, second, count] : cases) {
        SCOPED_TRACE(name);
        const TemporaryDirectory dir;
        HistoryStore store(dir / "new/history.jsonl");
        store.record(std::vector{reading(20, kNow), second}, kNow);
        EXPECT_THAT(store.all(), SizeIs(count));
        EXPECT_EQ(HistoryStore(dir / "new/history.jsonl").all(), store.all());
        EXPECT_EQ(fs::status(dir / "new").permissions(), fs::perms(0700));
        EXPECT_EQ(fs::status(dir / "new/history.jsonl").permissions(), fs::perms(0600));
    }
}

TEST(HistoryStore, LoadsEveryGoodLineAndNothingElse) {
    const std::string longText(300'000, '[');
    const std::map<std::size_t, std::vector<std::string>> linesBySamples{
        {1,
         {R"({"k":"nobody knows","u":7,"r":null,"t":2})",
          R"( {"t" : 2e0, "x":[{"k":1}], "r":3.5, "\u0075":-0.0, "k":"we\u0065k"} )"
          "\r"}},
        {0,
         {R"({"k":"session","u":"7","t":2})", R"({"k":1,"u":7,"t":2})", R"({"k":"session","u":7,"r":{},"t":2})",
          R"({"u":7,"t":2})", R"({"k":"session","t":2})", R"({"k":"session","u":7})",
          R"({"k":"session","u":7,"t":1e999})", R"({"k":"session","u":07,"t":2})", R"({"k":"session","u":7,"t":2)",
          R"({"k":"session","u":7,"t":)", R"({"k":"session","u":7,"t":2}{"k":"session","u":8,"t":3})",
          R"({"k":"session","u":{"k":"session","u":7,"t":2})", R"([{"k":"session","u":7,"t":2}])",
          "{\"k\":\"\xff\",\"u\":7,\"t\":2}", "", " ", std::string(100, '\0'), longText,
          R"({"k":")" + longText + R"(","u":7,"t":2})"}}};
    const std::string good = R"({"k":"week","u":1,"t":1})"
                             "\n";
    const TemporaryDirectory dir;
    for (const auto& [count, lines] : linesBySamples) {
        for (const std::string& line : lines) {
            SCOPED_TRACE(line.substr(0, 80));
            EXPECT_THAT(HistoryStore(dir.write("middle", good + line + ("\n" + good))).all(), SizeIs(2 + count));
            EXPECT_THAT(HistoryStore(dir.write("end", good + line)).all(), SizeIs(1 + count));
        }
    }
}

TEST(HistoryStore, NumbersAndKeysSurviveTheFile) {
    std::mt19937_64 random(1);
    std::vector<UsageWindow> windows;
    for (const char* name : {"Opus", "a \"quoted\"\\\n\tname", "模型 🙂", "\x01"}) {
        for (int i = 0; i < 200; ++i) {
            const double used = std::ldexp(random() >> 11U, static_cast<int>(random() % 200) - 150);
            const Instant observed = kNow + Seconds{i + std::ldexp(random() >> 11U, -53)};
            windows.push_back(reading(used, observed, Instant{Seconds{-used}}, WindowKind::weekModel(name)));
        }
    }
    const TemporaryDirectory dir;
    HistoryStore store(dir / "h");
    store.record(windows, kNow);
    auto expected = store.all();
    std::ranges::stable_sort(expected, {}, &HistorySample::observedAt);
    EXPECT_THAT(expected, SizeIs(windows.size()));
    EXPECT_EQ(HistoryStore(dir / "h").all(), expected);
}

TEST(HistoryStore, PrunesOnceADayAndKeepsWhatOthersWrote) {
    const TemporaryDirectory dir;
    const std::string unknown = R"({"k":"later","u":3,"t":)" + std::to_string(secondsSince1970(kNow - 1h)) + "}\n";
    const fs::path real = dir.write("elsewhere/real", lineOf(reading(1, kNow - 8 * 24h - 12h)) + "torn{\n" + unknown);
    fs::permissions(real, fs::perms(0640));
    fs::create_symlink("elsewhere/real", dir / "h");
    dir.write("elsewhere/real.vorn-new-a1B2c3", "left by a killed rewrite");
    dir.write("elsewhere/real.backup", "the user's own");

    HistoryStore store(dir / "h");
    recordOne(store, reading(3, kNow));
    EXPECT_THAT(store.all(), SizeIs(3)) << "inside the day of slack nothing goes";
    EXPECT_THAT(readAll(real), testing::HasSubstr("torn{"));

    const UsageWindow foreign = reading(50, kNow + 1h, std::nullopt, WindowKind::week());
    HistoryStore other(dir / "h");
    recordOne(other, foreign);
    recordOne(other, reading(9, kNow - 9 * 24h, std::nullopt, WindowKind::weekModel("stale")));
    const UsageWindow late = reading(4, kNow + 13h);
    recordOne(store, late);
    const auto kept = store.all();
    EXPECT_THAT(kept, testing::ElementsAre(testing::Field(&HistorySample::kindKey, "later"),
                                           HistorySample::of(reading(3, kNow)), HistorySample::of(foreign),
                                           HistorySample::of(late)));
    EXPECT_EQ(HistoryStore(dir / "h").all(), kept);
    EXPECT_TRUE(fs::is_symlink(dir / "h"));
    EXPECT_EQ(fs::status(real).permissions(), fs::perms(0640));
    EXPECT_FALSE(fs::exists(dir / "elsewhere/real.vorn-new-a1B2c3"));
    EXPECT_TRUE(fs::exists(dir / "elsewhere/real.backup"));
}

/// The sources of the current readings, by kind.
std::vector<DataSource> sourcesIn(const fs::path& file, Instant now) {
    std::vector<DataSource> sources;
    std::ranges::transform(HistoryStore(file).newestCurrent(now), std::back_inserter(sources), &UsageWindow::source);
    return sources;
}

TEST(HistoryStore, RemembersWhereAReadingCameFrom) {
    constexpr auto kCommand = DataSource::usageCommand;
    constexpr auto kLine = DataSource::statusLine;
    const TemporaryDirectory dir;
    UsageWindow session = reading(1, kNow);
    session.source = kLine;
    UsageWindow foreign = reading(3, kNow + 1s, std::nullopt, WindowKind::weekModel("foreign"));
    foreign.source = kLine;
    {
        HistoryStore store(dir / "h");
        recordOne(store, reading(5, kNow - 8 * 24h - 12h));
        store.record(std::vector{session, reading(2, kNow, std::nullopt, WindowKind::week())}, kNow);
        EXPECT_EQ(sourcesIn(dir / "h", kNow), (std::vector{kLine, kCommand})) << "appended";
        HistoryStore other(dir / "h");
        recordOne(other, foreign);
        recordOne(store, reading(4, kNow + 13h, kNow + 14h, WindowKind::weekModel("own")));
        EXPECT_THAT(store.all(), SizeIs(4)) << "the oldest went with a rewrite";
    }
    EXPECT_EQ(sourcesIn(dir / "h", kNow + 2s), (std::vector{kLine, kCommand, kLine})) << "rewritten and merged";
    EXPECT_THAT(readAll(dir / "h"), testing::StartsWith(R"({"k":"session","u":1,"r":1795359600,"t":1795348800,)"
                                                        R"("o":"statusLine"})"));
    for (const char* origin : {R"("hook")", "7", "null", R"(["statusLine"])"}) {
        const auto file = dir.write("x", R"({"k":"week","u":1,"t":1795348800,"o":)" + std::string(origin) + "}\n");
        EXPECT_EQ(sourcesIn(file, kNow), std::vector{kCommand}) << origin;
    }
}

TEST(HistoryStore, AddsWithoutWaitingForTheFile) {
    const TemporaryDirectory dir;
    HistoryStore store(dir / "h", HistoryStore::defaultRetention, HistoryStore::defaultHeartbeat, kLongPatience);
    recordOne(store, reading(1, kNow - 10 * 24h));
    for (const double used : {2, 4}) {  // the first write prunes, the second appends
        const Instant now = kNow + Seconds{used};
        auto lock = FileLock::acquire(dir / "h.lock", kLongPatience);
        EXPECT_THAT(store.add(std::vector{reading(used, now)}, now), SizeIs(1));
        std::thread writer([&] { EXPECT_TRUE(store.flush(now).isSaved); });
        const Instant later = now + 1s;
        const auto start = steady_clock::now();
        EXPECT_THAT(store.add(std::vector{reading(used + 1, later)}, later), SizeIs(1));
        EXPECT_LT(steady_clock::now() - start, kLongPatience / 4);
        lock.reset();
        writer.join();
        EXPECT_TRUE(store.flush(later).isSaved);
        EXPECT_EQ(HistoryStore(dir / "h").all(), store.all());
    }
    EXPECT_THAT(store.all(), SizeIs(4));

    // What another process has written already is not written again.
    store.add(std::vector{reading(6, kNow + 10s)}, kNow + 10s, HistoryStore::Stored::byAnotherProcess);
    store.flush(kNow + 10s);
    EXPECT_THAT(store.all(), SizeIs(5));
    EXPECT_THAT(HistoryStore(dir / "h").all(), SizeIs(4));
}

TEST(HistoryStore, RecordsOnAfterTheClockWasSetBack) {
    const TemporaryDirectory dir;
    HistoryStore store(dir / "h");
    recordOne(store, reading(20, kNow + 24h));
    for (int again = 0; again < 2; ++again) {
        for (const double used : {21, 22, 22}) {
            recordOne(store, reading(used, kNow + Seconds{used}));
        }
        EXPECT_THAT(store.all(), SizeIs(3));
    }
    HistoryStore reloaded(dir / "h");
    recordOne(reloaded, reading(23, kNow + 1min));
    EXPECT_THAT(reloaded.all(), SizeIs(4));
}

TEST(HistoryStore, AFullDiskLosesNothingAndATornLineOnlyItself) {
    const TemporaryDirectory dir;
    const std::string before = R"({"k":"session","u":1)";
    HistoryStore store(dir.write("h", before));
    // The kernel then takes ten more bytes and refuses the rest, as a full disk does.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit unlimited{};
    ::getrlimit(RLIMIT_FSIZE, &unlimited);
    const rlimit tight{.rlim_cur = before.size() + 10, .rlim_max = unlimited.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &tight);
    recordOne(store, reading(2, kNow));
    recordOne(store, reading(3, kNow + 30 * 24h));
    ::setrlimit(RLIMIT_FSIZE, &unlimited);

    EXPECT_EQ(readAll(dir / "h"), before);
    EXPECT_THAT(store.all(), SizeIs(1)) << "pruned, in memory at least";
    store.record({}, kNow);
    EXPECT_EQ(readAll(dir / "h"), before + "\n" + lineOf(reading(3, kNow + 30 * 24h)));
}

TEST(HistoryStore, LivesInMemoryWhereItCannotWrite) {
    const std::string old = lineOf(reading(1, kNow - 20 * 24h));
    const bool isRoot = ::geteuid() == 0;  // to whom permissions mean nothing
    for (const std::string prepare : {"mkdir h", "mkfifo h", "ln -s h h", "cp old h && chmod 400 h",
                                      "cp old h && chmod 0 h", "chmod 500 .", "mkdir h.lock"}) {
        SCOPED_TRACE(prepare);
        const TemporaryDirectory dir;
        dir.write("old", old);
        const std::string command =
            "cd '" + dir.path().string() + "' && " + prepare + (isRoot ? " && chown -hR 65534 ." : "");
        ASSERT_EQ(std::system(command.c_str()), 0);  // NOLINT(bugprone-command-processor): our own text
        EXPECT_TRUE(!isRoot || ::seteuid(65534) == 0);
        HistoryStore store(dir / "h");
        recordOne(store, reading(2, kNow));
        recordOne(store, reading(3, kNow + 1s));
        EXPECT_EQ(store.all().back(), HistorySample::of(reading(3, kNow + 1s)));
        EXPECT_TRUE(!isRoot || ::seteuid(0) == 0);
        fs::permissions(dir.path(), fs::perms(0700));
        if (fs::is_regular_file(fs::symlink_status(dir / "h"))) {
            fs::permissions(dir / "h", fs::perms(0600));  // else only root could look
            EXPECT_EQ(readAll(dir / "h"), old);
        }
    }
}

TEST(HistoryStore, WaitsBrieflyForAnotherWriterAndCatchesUp) {
    const TemporaryDirectory dir;
    HistoryStore store(dir / "h");
    std::optional held = FileLock::acquire(dir / "h.lock", 0ms);
    const auto start = steady_clock::now();
    recordOne(store, reading(1, kNow));
    EXPECT_GE(steady_clock::now() - start, 50ms);
    EXPECT_LT(steady_clock::now() - start, 1s);
    EXPECT_FALSE(fs::exists(dir / "h"));
    held.reset();
    recordOne(store, reading(2, kNow + 1s));
    EXPECT_EQ(readAll(dir / "h"), lineOf(reading(1, kNow)) + lineOf(reading(2, kNow + 1s)));

    held = FileLock::acquire(dir / "h.lock", 0ms);
    fs::remove(dir / "h.lock");
    recordOne(store, reading(3, kNow + 2s));
    EXPECT_THAT(HistoryStore(dir / "h").all(), SizeIs(3)) << "a deleted lock file blocks nobody for ever";
}

/// A child that runs `work` and leaves without the test's own clean-up.
pid_t fork(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    return child;
}

/// Records that many readings of a model of that name.
void recordMany(HistoryStore& store, const char* name, int count) {
    for (int i = 0; i < count; ++i) {
        recordOne(store, reading(i, kNow + Seconds{i}, kReset, WindowKind::weekModel(name)));
    }
}

TEST(HistoryStore, ProcessesAndThreadsShareTheFileWhileOneRewritesIt) {
    constexpr int kEach = 200;
    const TemporaryDirectory dir;
    HistoryStore store(dir / "h", 24h, 1s, kLongPatience);
    const pid_t appender = fork([&] { recordMany(store, "another process", kEach); });
    const pid_t rewriter = fork([&] {
        for (int i = 0; i < kEach / 10; ++i) {
            RecordedReadings none;
            static_cast<void>(HistoryFile(dir / "h", kLongPatience).rewrite(none, kNow));
        }
    });
    std::thread one([&] { recordMany(store, "one", kEach); });
    std::thread two([&] { recordMany(store, "two", kEach); });
    while (store.all().size() < std::size_t{2} * kEach) {
        std::this_thread::yield();
    }
    one.join();
    two.join();
    ::waitpid(appender, nullptr, 0);
    ::waitpid(rewriter, nullptr, 0);
    EXPECT_THAT(HistoryStore(dir / "h").all(), SizeIs(3 * kEach));
    EXPECT_EQ(std::ranges::count(readAll(dir / "h"), '\n'), 3 * kEach) << "no torn line, none left empty";
}

/// More rounds by hand: VORN_KILL_ROUNDS=500.
TEST(HistoryStore, KilledAtAnyMomentItLosesAtMostTheLineBeingWritten) {
    const int rounds = std::stoi(environmentValue("VORN_KILL_ROUNDS").value_or("40"));
    const TemporaryDirectory dir;
    // Shared with the children, so that the count of what was certainly recorded survives them.
    void* const page = ::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANON, -1, 0);
    ASSERT_NE(page, MAP_FAILED);
    auto& recorded = *new (page) std::atomic<int>(0);
    std::mt19937 random(7);
    for (int round = 0; round < rounds; ++round) {
        const pid_t child = fork([&] {
            HistoryStore store(dir / "h");
            for (int i = recorded;; ++i) {
                recordOne(store, reading(i, kNow + Seconds{i}));
                recorded = i + 1;
                if (i % 16 == 0) {
                    auto readings = HistoryFile(dir / "h", kLongPatience).read();
                    static_cast<void>(HistoryFile(dir / "h", kLongPatience).rewrite(readings, kNow));
                }
            }
        });
        std::this_thread::sleep_for(microseconds{500 + random() % 12'000});
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const auto samples = HistoryStore(dir / "h").all();
        ASSERT_GE(samples.size(), static_cast<std::size_t>(recorded)) << "after round " << round;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            ASSERT_EQ(samples[i].usedPercent, i);
        }
    }
    RecordProperty("samples", recorded);
}

TEST(HistorySample, NewestCurrentIsWhatStillHolds) {
    const std::tuple<const char*, std::vector<UsageWindow>, std::vector<double>> cases[] = {
        {"latest by time, not by place", {reading(2, kNow - 1h), reading(1, kNow - 2h)}, {2}},
        {"later of equal times", {reading(1, kNow - 1h), reading(2, kNow - 1h)}, {2}},
        {"reset is over", {reading(1, kNow - 2h), reading(2, kNow - 1h, kNow)}, {}},
        {"no reset time, fresh", {reading(1, kNow - 5h + 1s, std::nullopt)}, {1}},
        {"no reset time, a whole window ago", {reading(1, kNow - 5h, std::nullopt)}, {}},
        {"from the future", {reading(1, kNow), reading(2, kNow + 1s)}, {1}},
        {"by kind", {reading(2, kNow, kReset, WindowKind::week()), reading(1, kNow)}, {1, 2}},
    };
    for (const auto& [name, history, expected] : cases) {
        SCOPED_TRACE(name);
        std::vector<HistorySample> samples{{"unknown", 9, kReset, kNow}};
        std::ranges::transform(history, std::back_inserter(samples), &HistorySample::of);
        std::vector<double> used;
        std::ranges::transform(newestCurrent(samples, kNow), std::back_inserter(used), &UsageWindow::usedPercent);
        EXPECT_EQ(used, expected);
    }
}

}  // namespace
}  // namespace vorn
