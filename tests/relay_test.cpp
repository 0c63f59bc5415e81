#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <future>
#include <random>
#include <thread>

#include <fcntl.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/data/limit_names.hpp"
#include "core/status_line/more_limits.hpp"
#include "core/status_line/status_line_snapshot.hpp"
#include "core/support/descriptor.hpp"
#include "core/support/file.hpp"
#include "core/support/json.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

enum class Kind : std::uint8_t { pipe, socket, file };

struct Launch {
    std::vector<std::string> arguments;
    Kind kind = Kind::pipe;
    std::string input{};
    bool terminateWhenReady = false;  ///< Once it has written something.
    bool noFiles = false;             ///< No file may grow.
};

struct Outcome {
    std::string output;
    std::string error;
    int status = 0;  ///< As wait() gives it.
    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
    *out << "status " << outcome.status << ", output (" << outcome.output.size()
         << "): " << outcome.output.substr(0, 1000) << "\nerror: " << outcome.error;
}

struct Ends {
    Descriptor read;
    Descriptor write;
};

Ends openEnds(Kind kind) {
    int ends[2]{};
    const int failed =
        kind == Kind::socket ? ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) : ::pipe2(ends, O_CLOEXEC);
    EXPECT_EQ(failed, 0);
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

std::string readToEnd(int descriptor, const std::function<void()>& onFirst = {}) {
    std::string content;
    std::vector<char> buffer(65536);
    for (ssize_t count = 0; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;) {
        if (content.empty() && onFirst) {
            onFirst();
        }
        content.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return content;
}

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count <= 0) {
            return;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

/// Starts a program as a client with unusual signal settings would.
pid_t start(const Launch& run, int input, int output, int error) {
    std::vector<char*> arguments;
    for (const std::string& argument : run.arguments) {
        arguments.push_back(const_cast<char*>(argument.c_str()));  // what exec asks for
    }
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child != 0) {
        return child;
    }
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(error, STDERR_FILENO);
    if (run.noFiles) {
        const rlimit nothing{};
        ::setrlimit(RLIMIT_FSIZE, &nothing);
    }
    sigset_t blocked;
    ::sigemptyset(&blocked);
    for (const int signal : {SIGUSR1, SIGCHLD, SIGXFSZ}) {
        ::sigaddset(&blocked, signal);
    }
    ::sigprocmask(SIG_BLOCK, &blocked, nullptr);
    ::signal(SIGPIPE, SIG_DFL);
    ::signal(SIGQUIT, SIG_IGN);
    ::execv(arguments.front(), arguments.data());
    ::_exit(126);
}

class Relay : public testing::Test {
protected:
    Relay() {
        ::signal(SIGPIPE, SIG_IGN);
        ::prctl(PR_SET_CHILD_SUBREAPER, 1);  // what a run leaves behind becomes ours
    }

    void record(std::string_view command) const {
        const nlohmann::json content = {{"installedAt", "2026-11-22T20:45:00Z"},
                                        {"originalStatusLine", {{"type", "command"}, {"command", command}}}};
        m_home.write("integration.json", content.dump());
    }

    [[nodiscard]] Outcome perform(const Launch& run) const {
        const test::ScopedEnvironment home("VORN_HOME", m_home.path().c_str());
        Ends input = openEnds(run.kind);
        if (run.kind == Kind::file) {
            const std::string lead = "not for the command";
            const fs::path file = m_scratch.write("input", lead + run.input);
            input = {Descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC)), Descriptor()};
            ::lseek(input.read.get(), static_cast<off_t>(lead.size()), SEEK_SET);
        }
        Ends output = openEnds(Kind::pipe);
        Ends error = openEnds(Kind::pipe);
        const pid_t child = start(run, input.read.get(), output.write.get(), error.write.get());
        input.read.reset();
        output.write.reset();
        error.write.reset();
        auto feeding = std::async(std::launch::async, [&] {
            writeAll(input.write.get(), run.input);
            input.write.reset();
        });
        auto errors = std::async(std::launch::async, [&] { return readToEnd(error.read.get()); });
        Outcome outcome;
        outcome.output = readToEnd(output.read.get(), [&] {
            if (run.terminateWhenReady) {
                ::kill(child, SIGTERM);
            }
        });
        outcome.error = errors.get();
        ::waitpid(child, &outcome.status, 0);
        feeding.get();
        expectNothingRunning();
        return outcome;
    }

    /// Feeders end by themselves, soon after the last reader.
    static void expectNothingRunning() {
        const auto deadline = std::chrono::steady_clock::now() + 10s;
        pid_t child = 0;
        while ((child = ::waitpid(-1, nullptr, WNOHANG)) >= 0 && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(1ms);
        }
        EXPECT_EQ(child, -1) << "a process is still running";
    }

    [[nodiscard]] fs::path snapshotFile() const { return m_home / "statusline.json"; }

    const test::TemporaryDirectory m_home;
    const test::TemporaryDirectory m_scratch;
};

const std::string kInput =
    R"({"session_id":"x","rate_limits":{"five_hour":{"used_percentage":23.4,"resets_at":1795385906}}})";

std::vector<std::string> shell(const std::string& command) {
    return {"/bin/sh", "-c", command};
}

TEST_F(Relay, NobodyCanTellItFromTheCommandAlone) {
    const struct {
        const char* name;
        std::string command;
        bool terminate = false;
    } commands[] = {
        {"prints", R"(printf 'h\303\251llo \033[31mred\033[0m\n'; echo oops >&2)"},
        {"passes on", "cat; exit 3"},
        {"kills itself", "kill -9 $$"},
        {"crashes", "kill -SEGV $$"},
        {"ignores its input", "true"},
        {"reads the first bytes", "head -c 10"},
        {"reads in pieces", "head -c 5 >/dev/null; sleep 0.02; cat | cksum"},
        {"sleeps and is terminated", "echo ready; exec sleep 30", true},
        {"writes 5 MB", "head -c 5000000 /dev/zero | tr '\\0' x; cat >/dev/null"},
        {"is missing", "/no/such/program --flag"},
        {"is no shell syntax", "if"},
        {"sees the same input", "for k in p S f; do [ -$k /dev/stdin ] && echo $k; done; cat | cksum"},
        {"sees the same descriptors", "ls /proc/self/fd"},
        // Not SigQ: it counts the queued signals of all the processes of this user.
        {"sees the same signals", "grep -E '^(Sig|Shd)(Pnd|Blk|Ign|Cgt)' /proc/self/status"},
        {"sees the same limits", "grep -v Max.pending /proc/self/limits; umask"},
        {"sees no children", "read c </proc/$$/task/$$/children; echo [$c] $0 $# $-"},
        {"sees the same surroundings", "env | sort; pwd"},
    };
    const std::string inputs[] = {kInput, "", "garbage\n", std::string(300'000, 'y'), std::string(3'000'000, '{')};
    for (const auto& c : commands) {
        record(c.command);
        for (const Kind kind : {Kind::pipe, Kind::socket, Kind::file}) {
            for (const std::string& input : inputs) {
                SCOPED_TRACE(std::string(c.name) + ", kind " + std::to_string(static_cast<int>(kind)) + ", " +
                             std::to_string(input.size()) + " bytes");
                Launch run{
                    .arguments = shell(c.command), .kind = kind, .input = input, .terminateWhenReady = c.terminate};
                const Outcome direct = perform(run);
                run.arguments = {VORN_BRIDGE, "--chain"};
                ASSERT_EQ(perform(run), direct);
            }
        }
    }
    EXPECT_TRUE(StatusLineSnapshot::read(snapshotFile()));
}

TEST_F(Relay, PassesOnWhatNeverEnds) {
    record("head -c 2000000 | cksum");
    const std::vector<std::string> endless{"/bin/sh", "-c", std::string("yes | '") + VORN_BRIDGE + "' --chain"};
    EXPECT_EQ(perform({.arguments = endless}), perform({.arguments = shell("yes | head -c 2000000 | cksum")}));
}

/// A writer that has sent its object and keeps the pipe open.
TEST_F(Relay, DoesNotWaitForAWriterThatForgetsToClose) {
    constexpr std::size_t kShown = 12;
    const test::ScopedEnvironment home("VORN_HOME", m_home.path().c_str());
    for (const bool hasCommand : {true, false}) {
        SCOPED_TRACE(hasCommand);
        fs::remove(snapshotFile());
        fs::remove(m_home / "integration.json");
        if (hasCommand) {
            record("head -c 12; cat");
        }
        Ends input = openEnds(Kind::pipe);
        Ends output = openEnds(Kind::pipe);
        const pid_t child = start({.arguments = {VORN_BRIDGE, "--chain"}}, input.read.get(), output.write.get(), 2);
        input.read.reset();
        output.write.reset();
        const auto begin = std::chrono::steady_clock::now();
        // In pieces, with brackets where none count.
        writeAll(input.write.get(), R"({"a}\"}":[{"]}":1}],)");
        std::this_thread::sleep_for(150ms);
        writeAll(input.write.get(), kInput.substr(1));
        std::string shown(kShown, ' ');
        const ssize_t count = ::read(output.read.get(), shown.data(), kShown);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
        EXPECT_TRUE(StatusLineSnapshot::read(snapshotFile()));
        if (!hasCommand) {
            EXPECT_EQ(count, 0);
            ::waitpid(child, nullptr, 0);
        }
        writeAll(input.write.get(), "the rest");
        input.write.reset();
        if (hasCommand) {
            EXPECT_EQ(shown + readToEnd(output.read.get()), R"({"a}\"}":[{"]}":1}],)" + kInput.substr(1) + "the rest");
            ::waitpid(child, nullptr, 0);
        }
        expectNothingRunning();
    }
}

TEST_F(Relay, LeavesAloneWhatItCannotGiveBack) {
    record("head -c 3 | od -c; [ -c /dev/stdin ] && echo device");
    for (const char* input : {"</dev/null", "</dev/zero", "<&-"}) {
        SCOPED_TRACE(input);
        const std::string relay = std::string("'") + VORN_BRIDGE + "' --chain " + input;
        const std::string direct = "(head -c 3 | od -c; [ -c /dev/stdin ] && echo device) ";
        EXPECT_EQ(perform({.arguments = shell(relay)}), perform({.arguments = shell(direct + input)}));
    }
}

TEST_F(Relay, WithoutACommandItIsSilent) {
    const Outcome silence;
    const std::vector<std::string> chain{VORN_BRIDGE, "--chain"};
    EXPECT_EQ(perform({.arguments = chain, .input = kInput}), silence);
    EXPECT_EQ(StatusLineSnapshot::read(snapshotFile())->sessionID, "x");
    EXPECT_EQ(perform({.arguments = chain, .input = std::string(3'000'000, 'x')}), silence);
    record(std::string("'") + VORN_BRIDGE + "' --chain");
    EXPECT_EQ(perform({.arguments = chain, .input = kInput}), silence);
    m_home.write("integration.json", "damaged");
    EXPECT_EQ(perform({.arguments = chain, .input = kInput}), silence);
    record("echo ran");
    EXPECT_EQ(perform({.arguments = {VORN_BRIDGE}, .input = kInput}).output, "ran\n");
    EXPECT_EQ(perform({.arguments = {VORN_BRIDGE, "--chain", "--help"}, .input = kInput}).output, "ran\n");
    EXPECT_THAT(perform({.arguments = {VORN_BRIDGE, "--help"}}).output, HasSubstr("--chain"));
}

TEST_F(Relay, RunsTheCommandWhateverElseFails) {
    record("cat");
    const Launch run{.arguments = {VORN_BRIDGE, "--chain"}, .input = kInput};
    const Outcome expected{.output = kInput};
    EXPECT_EQ(perform(run), expected);
    const std::string before = test::readAll(snapshotFile());

    Launch full = run;
    full.noFiles = true;
    EXPECT_EQ(perform(full), expected);
    EXPECT_EQ(test::readAll(snapshotFile()), before);

    for (const char* taken : {"statusline.json", "statusline.json.lock"}) {
        SCOPED_TRACE(taken);
        fs::remove(m_home / taken);
        fs::create_directory(m_home / taken);
        EXPECT_EQ(perform(run), expected);
        fs::remove(m_home / taken);
    }
}

/// How long the writers run; a larger number by hand finds rarer faults.
Seconds stressDuration() {
    const char* set = std::getenv("VORN_STRESS_SECONDS");
    return Seconds{set != nullptr ? std::atof(set) : 2.0};
}

TEST_F(Relay, ManyAtOnceLeaveOneWholeSnapshotThatOnlyGetsNewer) {
    const test::ScopedEnvironment home("VORN_HOME", m_home.path().c_str());
    const Launch run{.arguments = {VORN_BRIDGE, "--chain"}};
    std::atomic<int> turns{0};
    const auto nextTurn = [&] {
        return R"({"prompt_id":)" + std::to_string(++turns) + "," + kInput.substr(1);
    };
    const auto nothing = [] {
        return Descriptor(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    };
    std::atomic<bool> stop{false};
    std::atomic<int> finished{0};
    const auto write = [&](unsigned seed) {
        std::mt19937 random(seed);
        const Descriptor sink = nothing();
        while (!stop) {
            Ends input = openEnds(Kind::pipe);
            writeAll(input.write.get(), nextTurn());
            input.write.reset();
            const pid_t child = start(run, input.read.get(), sink.get(), sink.get());
            if (random() % 8 == 0) {
                std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
                ::kill(child, SIGKILL);
            }
            ::waitpid(child, nullptr, 0);
            ++finished;
        }
    };
    std::vector<std::future<void>> writers;
    for (unsigned seed = 1; seed <= 8; ++seed) {
        writers.push_back(std::async(std::launch::async, write, seed));
    }
    const auto end = std::chrono::steady_clock::now() + stressDuration();
    std::optional<Instant> newest;
    int changes = 0;
    while (std::chrono::steady_clock::now() < end) {
        const auto snapshot = StatusLineSnapshot::read(snapshotFile());
        if (!snapshot) {
            EXPECT_FALSE(newest) << "a snapshot that was there cannot be read";
            continue;
        }
        EXPECT_GE(snapshot->observedAt, newest.value_or(snapshot->observedAt));
        changes += snapshot->observedAt != newest ? 1 : 0;
        newest = snapshot->observedAt;
    }
    stop = true;
    writers.clear();
    RecordProperty("runs", finished);
    EXPECT_GT(changes, 10);
    std::this_thread::sleep_for(1ms);  // which is what turns are counted in
    EXPECT_EQ(perform({.arguments = run.arguments, .input = nextTurn()}), Outcome());
    EXPECT_GT(StatusLineSnapshot::read(snapshotFile())->observedAt, *newest);
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_home.path())) {
        names.push_back(entry.path().filename());
    }
    std::erase_if(names, [](const std::string& name) {
        return name.starts_with("statusline-turns.txt.vorn-new-");  // goes with one of the next turns
    });
    EXPECT_THAT(names, UnorderedElementsAre("statusline.json", "statusline.json.lock", "statusline-turns.txt",
                                            "statusline-turns.txt.lock"));
}

TEST_F(Relay, AStatusLineThatIsDrawnAgainIsNoReading) {
    const auto run = [this](const std::string& session, int turn, const char* more = "") {
        const std::string input =
            fmt::format(R"({{"session_id":"{}","cost":{{"total_api_duration_ms":{}}},"rate_limits":{{)"
                        R"("five_hour":{{"used_percentage":{},"resets_at":1795385906}}{}}}}})",
                        session, turn, turn, more);
        EXPECT_EQ(perform({.arguments = {VORN_BRIDGE, "--chain"}, .input = input}), Outcome());
        std::this_thread::sleep_for(2ms);
        return StatusLineSnapshot::read(snapshotFile()).value();
    };
    const StatusLineSnapshot first = run("idle", 10);
    EXPECT_EQ(run("idle", 10), first);
    const StatusLineSnapshot second = run("busy", 20);
    EXPECT_GT(second.observedAt, first.observedAt);
    EXPECT_EQ(run("idle", 10), second) << "an older turn";
    fs::remove(snapshotFile());
    const StatusLineSnapshot again = run("busy", 20);
    EXPECT_EQ(again, second) << "what is missing comes back, as old as it is";
    const auto stamp = fileStamp(snapshotFile());
    run("busy", 20);
    EXPECT_EQ(fileStamp(snapshotFile()), stamp) << "nobody is woken for nothing";

    for (const char* damage : {"", "garbage\n9 9\n", "99999999999999999999 1 1\n"}) {
        m_home.write("statusline-turns.txt", damage);
        EXPECT_GT(run("busy", 20).observedAt, second.observedAt);
    }
    fs::remove(m_home / "statusline-turns.txt");
    fs::create_directory(m_home / "statusline-turns.txt");
    EXPECT_EQ(run("busy", 30).rateLimits.fiveHour->usedPercentage, 30);
    fs::remove(m_home / "statusline-turns.txt");

    EXPECT_FALSE(fs::exists(m_home / "statusline-limits.json"));
    run("busy", 40, R"(,"seven_day_opus":{"used_percentage":5})");
    EXPECT_EQ(readMoreLimits(m_home / "statusline-limits.json")->limits.windows.at(0).kind, modelWeek("Opus"));
}

}  // namespace
}  // namespace vorn
