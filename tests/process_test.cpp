#include "core/support/process/process.hpp"

#include <array>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include "tests/support/child_watch.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::ChildWatch;
using testing::HasSubstr;
using End = ProcessResult::End;
using Clock = std::chrono::steady_clock;

/// Every run has to leave nothing behind: no descriptor of ours, and none of the processes that a script named by
/// writing their ids to the file "pids".
class ProcessTest : public testing::Test {
protected:
    ProcessRequest shell(const std::string& script, Seconds timeout = 10s) const {
        return {.executable = "/bin/sh",
                .arguments = {"-c", script},
                .environment = {{"PATH", "/usr/bin:/bin"}},
                .workingDirectory = m_directory.path(),
                .timeout = timeout};
    }

    static std::string launchFailure(const ProcessRequest& request) {
        try {
            return "started: " + runProcess(request).standardOutput;
        } catch (const LaunchError& error) {
            return error.what();
        }
    }

    test::TemporaryDirectory m_directory;
    ChildWatch m_watch{m_directory / "pids"};  ///< checks at the end of the test
};

TEST_F(ProcessTest, HandsBackHowItEnded) {
    const std::tuple<const char*, const char*, End, int, std::string, std::string> cases[] = {
        {"both outputs", "echo out; echo err >&2", End::exited, 0, "out\n", "err\n"},
        {"signal", "echo so far; kill -USR1 $$", End::signalled, SIGUSR1, "so far\n", ""},
        {"bytes as they are", R"(printf 'a\000\377b')", End::exited, 0, std::string("a\0\377b", 4), ""},
        {"end of input at once", "cat; echo done", End::exited, 0, "done\n", ""},
        {"closed outputs", "exec >&- 2>&-; sleep 0.2; exit 4", End::exited, 4, "", ""},
        {"a writer that goes on after the child's end", "(sleep 0.01; echo late) & exit 5", End::exited, 5, "late\n",
         ""},
        {"a broken pipe ends quietly", "yes | head -n 1", End::exited, 0, "y\n", ""},
    };
    for (const auto& [name, script, end, status, output, error] : cases) {
        const ProcessResult r = runProcess(shell(script));
        EXPECT_EQ(std::tuple(r.end, r.status, r.standardOutput, r.standardError),
                  std::tuple(end, status, output, error))
            << name;
    }
}

TEST_F(ProcessTest, GivesTheChildExactlyWhatWasAskedFor) {
    m_directory.write("here", "");
    ProcessRequest request = shell("");
    request.executable = "/usr/bin/env";
    request.arguments = {};
    request.environment = {{"EMPTY", ""}, {"NAME", "a = b\nc"}};
    EXPECT_EQ(runProcess(request).standardOutput, "EMPTY=\nNAME=a = b\nc\n");

    EXPECT_EQ(runProcess(shell("ls; pwd")).standardOutput, "here\n" + m_directory.path().string() + "\n");
    ProcessRequest fed = shell("cat; echo end");
    fed.input = "one line\n";
    EXPECT_EQ(runProcess(fed).standardOutput, "one line\nend\n");
    fed.input = std::string(513, 'x');
    EXPECT_THROW(runProcess(fed), LaunchError);
    const std::string session = runProcess(shell("cut -d' ' -f5,6 /proc/$$/stat; echo $$ $$")).standardOutput;
    EXPECT_EQ(session.substr(0, session.find('\n') + 1), session.substr(session.find('\n') + 1));
}

TEST_F(ProcessTest, LeavesTheChildNeitherOurDescriptorsNorOurSignals) {
    const int inheritable = ::fcntl(STDIN_FILENO, F_DUPFD, 200);
    ASSERT_GE(inheritable, 200);
    sigset_t blocked;
    sigset_t old;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &old);
    const auto oldPipe = ::signal(SIGPIPE, SIG_IGN);

    const ProcessResult descriptors =
        runProcess(shell("for n in /proc/$$/fd/*; do [ -e $n ] && echo ${n##*/} $(readlink $n | cut -c1-5); done"));
    ProcessRequest plain = shell("");
    plain.executable = "/bin/cat";
    plain.arguments = {"/proc/self/status"};
    const std::string status = runProcess(plain).standardOutput;

    ::signal(SIGPIPE, oldPipe);
    ::pthread_sigmask(SIG_SETMASK, &old, nullptr);
    ::close(inheritable);
    EXPECT_EQ(descriptors.standardOutput, "0 /dev/\n1 pipe:\n2 pipe:\n");
    EXPECT_THAT(status,
                testing::ContainsRegex("SigBlk:\t0{16}\nSigIgn:\t.{8}[08]0{7}\n"));  // above 31, the C library's own
}

TEST_F(ProcessTest, KeepsNoMoreThanTheLimitsOfAFlood) {
    ProcessRequest request = shell("head -c 50000000 /dev/zero | tee /dev/stderr; echo end");
    request.outputLimit = 1000;
    request.errorLimit = 100;
    const ProcessResult result = runProcess(request);
    EXPECT_EQ(result.end, End::exited);
    EXPECT_EQ(result.standardOutput, std::string(1000, '\0'));
    EXPECT_EQ(result.standardError, std::string(100, '\0'));
}

TEST_F(ProcessTest, EndsItInTimeWithEverythingItStarted) {
    const std::string background = " & echo $! >>pids; ";
    const std::tuple<const char*, std::string, Seconds> cases[] = {
        {"tidies up", "trap 'sleep 0.1; touch tidied; exit 0' TERM; echo begun; while :; do sleep 0.02; done", 1.8s},
        {"hangs", "echo $$ >>pids; echo begun; exec sleep 60", 1.8s},
        {"floods", "echo begun; exec yes", 1.8s},
        {"stopped", "echo $$ >>pids; echo begun; kill -STOP $$", 1.8s},
        {"closed its outputs", "echo begun; exec >&- 2>&-; sleep 60" + background + "wait", 1.8s},
        {"does not listen, nor do its children",
         "trap '' TERM; echo begun; sleep 60" + background + "echo $$ >>pids; while :; do sleep 60; done", 3s},
        {"has a daemon of its own session",
         "echo begun; setsid sleep 60 >/dev/null 2>&1 </dev/null" + background + "wait", 1.8s},
        {"has a daemon that does not listen",
         R"(echo begun; setsid sh -c 'trap "" TERM; echo $$ >>pids; sleep 60' >/dev/null 2>&1 & wait)", 1.8s},
        {"has an orphaned daemon that kept the outputs",
         "echo begun; (setsid sh -c 'echo $$ >>pids; exec sleep 60' &); exec sleep 60", 1.8s},
    };
    for (const auto& [name, script, atMost] : cases) {
        SCOPED_TRACE(name);
        const auto start = Clock::now();
        const ProcessResult result = runProcess(shell(script, 0.3s));
        EXPECT_EQ(result.end, End::timedOut);
        EXPECT_EQ(result.standardOutput.substr(0, 6), "begun\n");
        EXPECT_LT(Clock::now() - start, atMost);
        m_watch.expectNothingLeft();
    }
    EXPECT_TRUE(std::filesystem::exists(m_directory / "tidied"));
}

TEST_F(ProcessTest, DoesNotWaitForWhatOutlivesTheChild) {
    for (const char* script :
         {"sleep 60 & echo $! >>pids; echo done", "sleep 60 >/dev/null 2>&1 & echo $! >>pids; echo done",
          "set -m; sleep 60 & echo $! >>pids; echo done", "setsid sleep 60 & echo $! >>pids; sleep 0.05; echo done",
          "(while :; do echo more >&2; done) & echo $! >>pids; echo done"}) {
        SCOPED_TRACE(script);
        const auto start = Clock::now();
        const ProcessResult result = runProcess(shell(script));
        EXPECT_EQ(result.end, End::exited);
        EXPECT_EQ(result.standardOutput, "done\n");
        EXPECT_LT(Clock::now() - start, 10s);
        m_watch.expectNothingLeft();
    }
}

TEST_F(ProcessTest, SaysWhyItCouldNotBeStarted) {
    const auto reasonFor = [&](const std::filesystem::path& executable) {
        ProcessRequest request = shell("");
        request.executable = executable;
        return launchFailure(request);
    };
    const auto file = m_directory.write("file", "#!/no/such/interpreter\n").string();
    EXPECT_EQ(reasonFor(""), ": Invalid argument");
    EXPECT_EQ(reasonFor("/no/such/file"), "/no/such/file: No such file or directory");
    EXPECT_EQ(reasonFor(m_directory.path()), m_directory.path().string() + ": Permission denied");
    EXPECT_EQ(reasonFor(file), file + ": Permission denied");
    std::filesystem::permissions(file, std::filesystem::perms(0755));
    EXPECT_EQ(reasonFor(file), file + ": No such file or directory");
    m_directory.write("file", "\x7f no program");
    EXPECT_EQ(reasonFor(file), file + ": Exec format error");

    ProcessRequest elsewhere = shell("");
    elsewhere.workingDirectory = file;
    EXPECT_EQ(launchFailure(elsewhere), "cannot work in " + file + ": Not a directory");
}

TEST_F(ProcessTest, CopesWithoutDescriptors) {
    // The sanitizers check a type once, and need descriptors for it: let that be now.
    EXPECT_NE(launchFailure({.executable = "/no/such/file"}), "");
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &old), 0);
    const int next = ::dup(STDIN_FILENO);
    ::close(next);
    // With one pair of descriptors for standard output, both pairs, and both pairs and the exit notice.
    for (const unsigned spare : {2U, 3U, 4U, 5U}) {
        SCOPED_TRACE(spare);
        const rlimit few{.rlim_cur = static_cast<rlim_t>(next) + spare, .rlim_max = old.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
        const std::string outcome = launchFailure(shell("sleep 0.1; echo ran"));
        ::setrlimit(RLIMIT_NOFILE, &old);
        EXPECT_EQ(outcome, spare < 4 ? "Too many open files" : "started: ran\n");
    }
}

TEST_F(ProcessTest, RunsWithItsOwnStandardDescriptorsClosed) {
    const int output = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    const int error = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    ::close(STDOUT_FILENO);
    ::close(STDERR_FILENO);
    const ProcessResult result = runProcess(shell("echo out; echo err >&2"));
    ::dup2(output, STDOUT_FILENO);
    ::dup2(error, STDERR_FILENO);
    ::close(output);
    ::close(error);
    EXPECT_EQ(result.standardOutput, "out\n");
    EXPECT_EQ(result.standardError, "err\n");
}

TEST_F(ProcessTest, LosesNoStatusSilently) {
    const auto old = ::signal(SIGCHLD, SIG_IGN);
    const std::string outcome = launchFailure(shell("exit 0"));
    ::signal(SIGCHLD, old);
    EXPECT_THAT(outcome, HasSubstr("exit status was lost"));
}

TEST_F(ProcessTest, IsCancelledAtOnceFromAnotherThread) {
    Cancellation cancellation;
    std::thread canceller([&] {
        std::this_thread::sleep_for(100ms);
        cancellation.cancel();
        cancellation.cancel();
    });
    const auto start = Clock::now();
    EXPECT_THROW(runProcess(shell("echo $$ >>pids; sleep 60 & echo $! >>pids; wait"), &cancellation), Cancelled);
    EXPECT_LT(Clock::now() - start, 1s);
    canceller.join();
    // Used up: the next one does not even start.
    EXPECT_THROW(runProcess(shell("touch started"), &cancellation), Cancelled);
    EXPECT_FALSE(std::filesystem::exists(m_directory / "started"));
}

TEST_F(ProcessTest, RunsSideBySide) {
    std::array<std::string, 8> outputs;
    std::vector<std::thread> threads;
    threads.reserve(outputs.size());
    for (std::string& output : outputs) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round) {
                output += runProcess(shell("sleep 0.01; echo " + std::to_string(round))).standardOutput;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(outputs, testing::Each("0\n1\n2\n3\n4\n"));
}

}  // namespace
}  // namespace vorn
