#include "core/data/history_store.hpp"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/data/history_line.hpp"
#include "core/support/file.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace std::chrono;
using test::readAll;
using test::TemporaryDirectory;
using testing::ElementsAre;
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
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char* name;
        UsageWindow second;
        std::size_t lines;
    } cases[] = {
        {"unchanged within the heartbeat", reading(20, kNow + 599s), 1},
        {"unchanged at the heartbeat", reading(20, kNow + 600s), 2},
        {"changed", reading(20.000001, kNow + 1s), 2},
        {"lower", reading(19, kNow + 1s), 2},
        {"same time, changed", reading(30, kNow), 1},
        {"earlier", reading(30, kNow - 1s), 1},
        {"reset time drifts", reading(20, kNow + 1s, kReset + 299s), 1},
        {"reset time moves", reading(20, kNow + 1s, kReset - 300s), 2},
        {"reset time vanishes", reading(20, kNow + 1s, std::nullopt), 2},
        {"another kind", reading(20, kNow, kReset, WindowKind::weekModel("Opus")), 2},
        {"not a number JSON knows", reading(infinity, kNow + 1s), 1},
        {"never resets", reading(20, kNow + 1s, Instant{Seconds{infinity}}), 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TemporaryDirectory dir;
        HistoryStore store(dir / "new/history.jsonl");
        const UsageWindow both[] = {reading(20, kNow), c.second};
        store.record(both, kNow);
        EXPECT_THAT(store.all(), SizeIs(c.lines));
        EXPECT_EQ(HistoryStore(dir / "new/history.jsonl").all(), store.all());
        EXPECT_EQ(fs::status(dir / "new").permissions(), fs::perms(0700));
        EXPECT_EQ(fs::status(dir / "new/history.jsonl").permissions(), fs::perms(0600));
    }
}

TEST(HistoryStore, LoadsEveryGoodLineAndNothingElse) {
    const struct {
        std::string line;
        bool isSample;
    } cases[] = {
        {R"({"k":"session","u":7,"t":2})", true},
        {R"({"k":"session","u":7,"r":null,"t":2})", true},
        {R"( {"t" : 2e0, "x":[{"k":1}], "r":3.5, "\u0075":-0.0, "k":"we\u0065k"} )"
         "\r",
         true},
        {R"({"k":"nobody knows","u":7,"t":2})", true},
        {R"({"k":"session","u":"7","t":2})", false},
        {R"({"k":"session","u":7,"t":true})", false},
        {R"({"k":"session","u":7,"r":"3","t":2})", false},
        {R"({"k":"session","u":7,"r":{},"t":2})", false},
        {R"({"k":1,"u":7,"t":2})", false},
        {R"({"k":null,"u":7,"t":2})", false},
        {R"({"u":7,"t":2})", false},
        {R"({"k":"session","t":2})", false},
        {R"({"k":"session","u":7})", false},
        {R"({"k":"session","u":7,"t":1e999})", false},
        {R"({"k":"session","u":07,"t":2})", false},
        {R"({"k":"session","u":7,"t":2)", false},
        {R"({"k":"session","u":7,"t":)", false},
        {R"({"k":"session","u":7,"t":2}{"k":"session","u":8,"t":3})", false},
        {R"({"k":"session","u":7,"t":2},)", false},
        {R"({"k":"session","u":{"k":"session","u":7,"t":2})", false},
        {R"([{"k":"session","u":7,"t":2}])", false},
        {"{\"k\":\"\xff\",\"u\":7,\"t\":2}", false},
        {"", false},
        {" ", false},
        {std::string(100, '\0'), false},
        {R"({"k":")" + std::string(300'000, 'x') + R"(","u":7,"t":2})", false},
        {std::string(300'000, '['), false},
    };
    const std::string good = R"({"k":"week","u":1,"t":1})";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line.substr(0, 80));
        const TemporaryDirectory dir;
        // In the middle, and as a last line without its line feed.
        for (const std::string& text :
             {good + "\n" + c.line + "\n" + good + "\n", good + "\n" + good + "\n" + c.line}) {
            EXPECT_THAT(HistoryStore(dir.write("h", text)).all(), SizeIs(c.isSample ? 3 : 2));
        }
    }
}

TEST(HistoryStore, NumbersAndKeysSurviveTheFile) {
    std::mt19937_64 random(1);
    std::vector<UsageWindow> windows;
    for (const char* name : {"Opus", "a \"quoted\"\\\n\tname", "模型 🙂", "\x01"}) {
        for (int i = 0; i < 200; ++i) {
            const double used =
                std::ldexp(static_cast<double>(random() >> 11U), static_cast<int>(random() % 200) - 150);
            windows.push_back(reading(used, kNow + Seconds{i + std::ldexp(random() >> 11U, -53)},
                                      Instant{Seconds{-used}}, WindowKind::weekModel(name)));
        }
    }
    const TemporaryDirectory dir;
    HistoryStore store(dir / "h");
    store.record(windows, kNow);
    auto expected = store.all();
    EXPECT_THAT(expected, SizeIs(windows.size()));
    std::ranges::stable_sort(expected, {}, &HistorySample::observedAt);
    EXPECT_EQ(HistoryStore(dir / "h").all(), expected);
}

TEST(HistoryStore, PrunesOnceADayAndKeepsWhatOthersWrote) {
    const TemporaryDirectory dir;
    const Instant oldest = kNow - 8 * 24h - 12h;
    const std::string unknown = R"({"k":"later","u":3,"t":)" + std::to_string(secondsSince1970(kNow - 1h)) + "}\n";
    const fs::path real = dir.write(
        "elsewhere/real", lineOf(reading(1, oldest)) + "torn{\n" + unknown + lineOf(reading(2, kNow - 8 * 24h + 1s)));
    fs::permissions(real, fs::perms(0640));
    fs::create_symlink("elsewhere/real", dir / "history.jsonl");
    dir.write("elsewhere/real.vorn-a1B2c3", "left by a killed rewrite");
    dir.write("elsewhere/real.backup", "the user's own");

    HistoryStore store(dir / "history.jsonl");
    recordOne(store, reading(3, kNow));
    EXPECT_THAT(store.all(), SizeIs(4)) << "inside the day of slack nothing goes";
    EXPECT_THAT(readAll(real), testing::HasSubstr("torn{"));

    const UsageWindow foreign = reading(50, kNow + 1h, std::nullopt, WindowKind::week());
    HistoryStore other(dir / "history.jsonl");
    recordOne(other, foreign);
    recordOne(other, reading(9, kNow - 9 * 24h, std::nullopt, WindowKind::weekModel("stale")));
    const UsageWindow late = reading(4, kNow + 13h);
    recordOne(store, late);
    const auto kept = store.all();
    EXPECT_THAT(kept, ElementsAre(testing::Field(&HistorySample::kindKey, "later"), HistorySample::of(reading(3, kNow)),
                                  HistorySample::of(foreign), HistorySample::of(late)));
    EXPECT_EQ(HistoryStore(dir / "history.jsonl").all(), kept);
    EXPECT_TRUE(fs::is_symlink(dir / "history.jsonl"));
    EXPECT_EQ(fs::status(real).permissions(), fs::perms(0640));
    EXPECT_FALSE(fs::exists(dir / "elsewhere/real.vorn-a1B2c3"));
    EXPECT_TRUE(fs::exists(dir / "elsewhere/real.backup"));
}

TEST(HistoryStore, ATornLastLineCostsOnlyItself) {
    const TemporaryDirectory dir;
    const std::string torn = R"({"k":"session","u":1)";
    dir.write("h", torn);
    HistoryStore store(dir / "h");
    recordOne(store, reading(2, kNow));
    EXPECT_EQ(readAll(dir / "h"), torn + "\n" + lineOf(reading(2, kNow)));
    EXPECT_EQ(HistoryStore(dir / "h").all(), store.all());
}

TEST(HistoryStore, AFullDiskLosesNothing) {
    const TemporaryDirectory dir;
    HistoryStore store(dir / "h");
    recordOne(store, reading(1, kNow));
    const std::string before = readAll(dir / "h");

    // The kernel then takes ten more bytes and refuses the rest, as a full disk does.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit unlimited{};
    ::getrlimit(RLIMIT_FSIZE, &unlimited);
    const rlimit tight{.rlim_cur = before.size() + 10, .rlim_max = unlimited.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &tight);
    recordOne(store, reading(2, kNow + 1s));
    const Instant later = kNow + 30 * 24h;
    const UsageWindow two[] = {reading(3, later), reading(4, later, kReset, WindowKind::week())};
    HistoryStore pruning(dir / "h");
    pruning.record(two, later);
    EXPECT_THAT(pruning.all(), SizeIs(2)) << "pruned, in memory at least";
    ::setrlimit(RLIMIT_FSIZE, &unlimited);

    EXPECT_EQ(readAll(dir / "h"), before);
    EXPECT_THAT(store.all(), SizeIs(2));
    store.record({}, kNow);
    EXPECT_EQ(readAll(dir / "h"), before + lineOf(reading(2, kNow + 1s)));
}

/// Gives up root's power over permissions for a while, where the tests run as root.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const fs::path& owned) {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && (::chown(owned.c_str(), kNobody, kNobody) != 0 || ::seteuid(kNobody) != 0)) {
            std::abort();
        }
    }
    ~OrdinaryUser() {
        if (::getuid() == 0 && ::seteuid(0) != 0) {
            std::abort();
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
};

TEST(HistoryStore, LivesInMemoryWhereItCannotWrite) {
    const std::string old = lineOf(reading(1, kNow - 20 * 24h));
    const struct {
        const char* name;
        std::function<void(const TemporaryDirectory&)> prepare;
    } cases[] = {
        {"directory",
         [](const auto& dir) {
             fs::create_directory(dir / "h");
         }},
        {"FIFO",
         [](const auto& dir) {
             ::mkfifo((dir / "h").c_str(), 0600);
         }},
        {"link to itself",
         [](const auto& dir) {
             fs::create_symlink("h", dir / "h");
         }},
        {"read-only file",
         [&](const auto& dir) {
             fs::permissions(dir.write("h", old), fs::perms(0400));
         }},
        {"unreadable file",
         [&](const auto& dir) {
             fs::permissions(dir.write("h", old), fs::perms(0));
         }},
        {"read-only directory",
         [](const auto& dir) {
             fs::permissions(dir.path(), fs::perms(0500));
         }},
        {"no lock file",
         [](const auto& dir) {
             fs::create_directory(dir / "h.lock");
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TemporaryDirectory dir;
        const OrdinaryUser user(dir.path());
        c.prepare(dir);
        HistoryStore store(dir / "h");
        recordOne(store, reading(2, kNow));
        recordOne(store, reading(3, kNow + 1s));
        const auto samples = store.all();
        ASSERT_GE(samples.size(), 2U);
        EXPECT_EQ(samples.back(), HistorySample::of(reading(3, kNow + 1s)));
        fs::permissions(dir.path(), fs::perms(0700));
        if (fs::is_regular_file(fs::symlink_status(dir / "h"))) {
            fs::permissions(dir / "h", fs::perms(0600));
            EXPECT_EQ(readAll(dir / "h"), old);
        }
    }
}

TEST(HistoryStore, WaitsBrieflyForAnotherWriterAndCatchesUp) {
    const TemporaryDirectory dir;
    HistoryStore store(dir / "h");
    std::optional held = FileLock::acquire(dir / "h.lock", 0ms);
    ASSERT_TRUE(held);
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

TEST(HistoryStore, ProcessesShareTheFileWhileOneRewritesIt) {
    constexpr int kEach = 300;
    const TemporaryDirectory dir;
    std::vector<pid_t> children;
    for (const char* name : {"one", "two"}) {
        children.push_back(fork([&] {
            HistoryStore store(dir / "h", HistoryStore::defaultRetention, HistoryStore::defaultHeartbeat,
                               kLongPatience);
            for (int i = 0; i < kEach; ++i) {
                recordOne(store, reading(i, kNow + Seconds{i}, kReset, WindowKind::weekModel(name)));
            }
        }));
    }
    children.push_back(fork([&] {
        const HistoryFile file(dir / "h", kLongPatience);
        for (int i = 0; i < kEach / 10; ++i) {
            std::vector<HistorySample> none;
            static_cast<void>(file.rewrite(none, kNow));
        }
    }));
    for (const pid_t child : children) {
        ::waitpid(child, nullptr, 0);
    }
    const auto samples = HistoryStore(dir / "h").all();
    EXPECT_THAT(samples, SizeIs(2 * kEach));
    EXPECT_EQ(std::ranges::count(readAll(dir / "h"), '\n'), 2 * kEach) << "no torn line, none left empty";
}

TEST(HistoryStore, KilledAtAnyMomentItLosesAtMostTheLineBeingWritten) {
    const char* wanted = std::getenv("VORN_KILL_ROUNDS");
    const int rounds = wanted == nullptr ? 40 : std::atoi(wanted);
    const TemporaryDirectory dir;
    // How many samples have been recorded for certain: survives the child that counts.
    void* const page = ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(page, MAP_FAILED);
    auto& recorded = *new (page) std::atomic<int>(0);
    std::mt19937 random(7);
    int lost = 0;
    for (int round = 0; round < rounds; ++round) {
        const int first = recorded;
        const pid_t child = fork([&] {
            HistoryStore store(dir / "h");
            const HistoryFile file(dir / "h", kLongPatience);
            for (int i = first;; ++i) {
                recordOne(store, reading(i, kNow + Seconds{i}));
                recorded = i + 1;
                if (i % 4 == 0) {
                    auto samples = store.all();
                    static_cast<void>(file.rewrite(samples, kNow - 1h));
                }
            }
        });
        std::this_thread::sleep_for(microseconds{500 + random() % 12'000});
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const auto samples = HistoryStore(dir / "h").all();
        const int all = recorded;
        for (int i = 0, at = 0; i < all; ++i) {
            const auto index = static_cast<std::size_t>(at);
            const bool isThere = index < samples.size() && samples[index].usedPercent == i;
            at += isThere ? 1 : 0;
            lost += isThere ? 0 : 1;
        }
        ASSERT_EQ(lost, 0) << "after round " << round;
    }
    RecordProperty("samples", recorded);
    RecordProperty("lost", lost);
    ::munmap(page, 4096);
}

TEST(HistoryStore, SerialisesItsCallers) {
    constexpr int kEach = 50;
    const TemporaryDirectory dir;
    HistoryStore store(dir / "h");
    HistoryStore sibling(dir / "h", HistoryStore::defaultRetention, HistoryStore::defaultHeartbeat, kLongPatience);
    std::vector<std::thread> threads;
    for (const char* name : {"a", "b", "c"}) {
        threads.emplace_back([&, name] {
            for (int i = 0; i < kEach; ++i) {
                recordOne(*name == 'c' ? sibling : store,
                          reading(i, kNow + Seconds{i}, kReset, WindowKind::weekModel(name)));
                EXPECT_LE(store.all().size(), 3U * kEach);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    store.record({}, kNow);
    EXPECT_THAT(HistoryStore(dir / "h").all(), SizeIs(3 * kEach));
}

TEST(HistorySample, NewestCurrentIsWhatStillHolds) {
    const auto week = WindowKind::week();
    const struct {
        const char* name;
        std::vector<UsageWindow> history;
        std::vector<double> used;
    } cases[] = {
        {"nothing", {}, {}},
        {"latest by time, not by place", {reading(2, kNow - 1h), reading(1, kNow - 2h)}, {2}},
        {"later of equal times", {reading(1, kNow - 1h), reading(2, kNow - 1h)}, {2}},
        {"reset is over", {reading(1, kNow - 2h), reading(2, kNow - 1h, kNow)}, {}},
        {"no reset time, fresh", {reading(1, kNow - 5h + 1s, std::nullopt)}, {1}},
        {"no reset time, a whole window ago", {reading(1, kNow - 5h, std::nullopt)}, {}},
        {"from the future", {reading(1, kNow), reading(2, kNow + 1s)}, {1}},
        {"by kind", {reading(2, kNow, kReset, week), reading(1, kNow)}, {1, 2}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<HistorySample> samples{{"unknown", 9, kReset, kNow}};
        std::ranges::transform(c.history, std::back_inserter(samples), &HistorySample::of);
        std::vector<double> used;
        std::ranges::transform(newestCurrent(samples, kNow), std::back_inserter(used), &UsageWindow::usedPercent);
        EXPECT_EQ(used, c.used);
    }
}

}  // namespace
}  // namespace vorn
