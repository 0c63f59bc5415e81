// Real processes: this test's own executable, started again as the application would be.
#include "model/instance_server.hpp"

#include <QCoreApplication>
#include <QTimer>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fstream>
#include <future>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/support/executable_path.hpp"
#include "core/support/json.hpp"
#include "core/support/local_socket.hpp"
#include "core/support/process/process.hpp"
#include "tests/support/repeated.hpp"
#include "tests/support/temporary_directory.hpp"
#include "tests/support/wait_until.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Kind = InstanceServer::Start::Kind;
using test::readAll;
using test::waitUntil;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kOk = R"({"reply":"ok"})";

// What the instance below understands by them.
constexpr InstanceRequest kQuit{.kind = InstanceRequest::Kind::redeemed, .scope = PlannedReset::Scope::all};
constexpr InstanceRequest kRefuse{.kind = InstanceRequest::Kind::redeemed, .scope = PlannedReset::Scope::session};

/// What the executable does as "--instance HOME": says how it started and, as the first, writes down what is requested.
int runInstance(int& argc, char** argv) {
    const QCoreApplication application(argc, argv);
    InstanceServer server(argv[2]);
    const auto start = server.start({});
    std::ofstream(fs::path(argv[2]) / "starts", std::ios::app) << (start.kind == Kind::first        ? "first\n"
                                                                   : start.kind == Kind::handedOver ? "handed over\n"
                                                                                                    : "failed\n");
    if (start.kind != Kind::first) {
        return start.kind == Kind::handedOver ? 0 : 1;
    }
    server.setHandler([&](const InstanceRequest& request) {
        std::ofstream(fs::path(argv[2]) / "requests", std::ios::app) << rawValue(request.kind) << '\n';
        if (request == kQuit) {
            QTimer::singleShot(0, &application, &QCoreApplication::quit);
        }
        return request == kRefuse ? QStringLiteral("Not now.") : QString();
    });
    return QCoreApplication::exec();
}

class InstanceServerTest : public testing::Test {
protected:
    InstanceServerTest() { fs::create_directories(m_home); }
    ~InstanceServerTest() override {
        for (const pid_t process : m_processes) {
            ::kill(process, SIGKILL);
            ::waitpid(process, nullptr, 0);
        }
    }

    void launch() {
        const std::string self = runningExecutable();
        const pid_t process = ::fork();
        if (process == 0) {
            ::execl(self.c_str(), self.c_str(), "--instance", m_home.c_str(), nullptr);
            ::_exit(127);
        }
        m_processes.push_back(process);
    }
    /// Its exit status, or minus the signal.
    int wait(pid_t process) {
        int status = 0;
        ::waitpid(process, &status, 0);
        std::erase(m_processes, process);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    [[nodiscard]] std::string request(const InstanceRequest& what, std::chrono::milliseconds timeout = 10s) const {
        const auto socket = findLocalSocket(m_home);
        return socket ? sendRequest(*socket, encode(what), timeout).value_or("") : "";
    }
    /// Until it answers.
    [[nodiscard]] bool isReady() const {
        return waitUntil([&] { return request({}) == kOk; });
    }
    [[nodiscard]] std::string noted(const char* name) const {
        return fs::exists(m_home / name) ? readAll(m_home / name) : "";
    }

    const test::TemporaryDirectory m_dir;
    const fs::path m_home = m_dir / "home";
    const test::ScopedEnvironment m_runtime{"XDG_RUNTIME_DIR", m_dir.path().c_str()};
    std::vector<pid_t> m_processes;
};

TEST_F(InstanceServerTest, LeavesExactlyOneOfTwoStartsAtTheSameMoment) {
    for (int round = 0; round < 50; ++round) {
        SCOPED_TRACE(round);
        fs::remove(m_home / "starts");
        fs::remove(m_home / "requests");
        launch();
        launch();
        int ended = 0;
        const pid_t second = ::waitpid(-1, &ended, 0);
        ASSERT_TRUE(WIFEXITED(ended) && WEXITSTATUS(ended) == 0);
        std::erase(m_processes, second);
        ASSERT_EQ(noted("requests"), "activate\n");
        if (round % 2 == 0) {  // the next round finds a place that was left behind, or one that was tidied up
            ::kill(m_processes.front(), SIGKILL);
        } else {
            ASSERT_EQ(request(kQuit), kOk);
        }
        EXPECT_EQ(wait(m_processes.front()), round % 2 == 0 ? -SIGKILL : 0);
        EXPECT_THAT(noted("starts"), testing::AnyOf("first\nhanded over\n", "handed over\nfirst\n"));
        EXPECT_EQ(fs::exists(findLocalSocket(m_home).value()), round % 2 == 0);
    }
}

TEST_F(InstanceServerTest, TellsWhatTheFirstOneSays) {
    launch();
    ASSERT_TRUE(isReady());
    InstanceServer second(m_home);
    const auto refused = second.start(kRefuse);
    EXPECT_EQ(refused.kind, Kind::failed);
    EXPECT_EQ(refused.problem, "Not now.");
    EXPECT_EQ(second.start({.kind = InstanceRequest::Kind::showDashboard}).kind, Kind::handedOver);
    EXPECT_THAT(noted("requests"), HasSubstr("show-dashboard\n"));
    // Another home is another Vorn, the same one written otherwise is not.
    InstanceServer other(m_dir / "other");
    EXPECT_EQ(other.start({}).kind, Kind::first);
    fs::create_directory_symlink(m_home, m_dir / "link");
    InstanceServer same(m_dir / "link/../link/");
    EXPECT_EQ(same.start({}).kind, Kind::handedOver);

    // One that hangs.
    ::kill(m_processes.front(), SIGSTOP);
    InstanceServer third(m_home);
    const auto failed = third.start({}, {.toListen = 100ms, .toAnswer = 200ms});
    EXPECT_EQ(failed.kind, Kind::failed);
    EXPECT_EQ(failed.problem.toStdString(), "Vorn is running already (process " + std::to_string(m_processes.front()) +
                                                ") but does not answer. End that one, then start Vorn again.");
    EXPECT_EQ(request({}, 50ms), "");
    // One whose lock file was cleaned away is found all the same.
    ::kill(m_processes.front(), SIGCONT);
    ASSERT_TRUE(isReady());
    fs::remove(findLocalSocket(m_home)->replace_extension(".lock"));
    EXPECT_EQ(third.start({}).kind, Kind::handedOver);
}

TEST_F(InstanceServerTest, LearnsOfARedeemedResetFromTheTerminal) {
    const std::map<std::string, std::string> environment{{"VORN_HOME", m_home}, {"XDG_RUNTIME_DIR", m_dir.path()}};
    const auto redeem = [&] {
        const auto result = runProcess(
            {.executable = VORNCTL, .arguments = {"plan", "redeem", "--scope", "week"}, .environment = environment});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.standardError, "");
        return result.standardOutput;
    };
    const std::string alone = redeem();
    EXPECT_FALSE(fs::exists(m_dir / "vorn"));
    launch();
    ASSERT_TRUE(isReady());
    EXPECT_EQ(redeem(), alone);
    EXPECT_THAT(noted("requests"), testing::EndsWith("activate\nredeemed\n"));
    ::kill(m_processes.front(), SIGSTOP);
    EXPECT_EQ(redeem(), alone);
}

/// A server in this process, with an event loop only where the test runs one.
class InstanceConnectionTest : public InstanceServerTest {
protected:
    InstanceConnectionTest() {
        EXPECT_EQ(m_server.start({}).kind, Kind::first);
        m_server.setHandler([this](const InstanceRequest& request) {
            m_handled = encode(request);
            return QString();
        });
    }

    [[nodiscard]] Descriptor connected() const {
        Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, findLocalSocket(m_home)->c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return socket;
    }
    /// What the server answers, while its event loop runs.
    std::string answerTo(std::string line) {
        auto reply = std::async(std::launch::async, [this, line = std::move(line)] {
            return sendRequest(*findLocalSocket(m_home), line, 10s).value_or("nothing");
        });
        waitUntil([&] { return reply.wait_for(0s) == std::future_status::ready; });
        return reply.get();
    }

    InstanceServer m_server{m_home};
    std::string m_handled;
};

TEST_F(InstanceConnectionTest, AnswersEveryLine) {
    EXPECT_EQ(answerTo(R"({"scope": "week", "request": "redeemed", "more": [1]})"), kOk);
    EXPECT_EQ(m_handled, R"({"request":"redeemed","scope":"week"})");
    const std::string long_ = R"({"request":"activate","scope":")" + std::string(kLongestRequest - 40, 'x') + "\"}";
    EXPECT_EQ(answerTo(long_), kOk);
    m_handled.clear();
    for (const std::string& line :
         {std::string(), std::string("activate"), std::string("[]"), std::string(R"({"request": 5})"),
          std::string("\0\xff\x01", 3), test::repeated(20000, "["), std::string(R"({"request": "activate"} more)")}) {
        EXPECT_EQ(answerTo(line), R"({"error":"That is no request."})") << line.substr(0, 40);
    }
    for (const char* const line : {R"({"request": "dance"})", R"({"request": "redeemed", "scope": "day"})"}) {
        EXPECT_THAT(answerTo(line), HasSubstr("does not know this request"));
    }
    // One that is too long is not waited for, so its sender may be cut off.
    EXPECT_THAT(answerTo(std::string(10 * kLongestRequest, 'x')), testing::AnyOf("nothing", HasSubstr("no request")));
    m_server.setHandler({});
    EXPECT_EQ(answerTo(R"({"request": "activate"})"), R"({"error":"Vorn is still starting."})");
    EXPECT_EQ(m_handled, "");
}

TEST_F(InstanceConnectionTest, IsHeldUpByNobody) {
    const std::string kActivate = R"({"request":"activate"})";
    std::vector<Descriptor> clients;
    const auto send = [&](std::string_view bytes) {
        return ::send(clients.back().get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    };
    for (int i = 0; i < 40; ++i) {  // more than are kept; the oldest go
        clients.push_back(connected());
        if (i % 3 != 0) {
            send(i % 3 == 1 ? R"({"request": "acti)" : "");
        }
        if (i % 8 == 0) {
            QCoreApplication::processEvents();
        }
    }
    EXPECT_EQ(answerTo(R"({"request": "activate"})"), kOk);
    // Those who say nothing more are closed in the end; the last of them were kept till then.
    const auto isClosed = [](const Descriptor& client) {
        char byte = 0;
        return ::recv(client.get(), &byte, 1, MSG_DONTWAIT) == 0;
    };
    EXPECT_TRUE(isClosed(clients.front()));
    EXPECT_FALSE(isClosed(clients.back()));
    EXPECT_TRUE(waitUntil([&] { return isClosed(clients.back()); }));

    // No descriptor left: it rests instead of turning in circles, and then goes on.
    clients.clear();
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    clients.push_back(connected());
    send(R"({"request": "show-popover"})"
         "\n");
    const Descriptor next(::dup(0));
    const rlimit none{.rlim_cur = static_cast<rlim_t>(next.get()), .rlim_max = limit.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    const std::clock_t before = std::clock();
    waitUntil([] { return false; }, 400ms);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 5);
    ::setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(m_handled, kActivate);
    waitUntil([&] { return m_handled != kActivate; });
    EXPECT_EQ(m_handled, R"({"request":"show-popover"})");
}

TEST(LocalSocket, LiesWhereNobodyElseCanBe) {
    const test::TemporaryDirectory dir;
    const auto in = [](const fs::path& directory) {
        return makeLocalSocketPlace("/somewhere/Vorn").parent_path() == directory;
    };
    const std::string temporaryName = "vorn-" + std::to_string(::geteuid());
    const test::ScopedEnvironment temporary("TMPDIR", dir.path().c_str());
    const test::ScopedEnvironment runtime("XDG_RUNTIME_DIR", (dir / "run").c_str());
    EXPECT_TRUE(in(dir / temporaryName));  // there is no such place
    fs::create_directory(dir / "run");
    EXPECT_TRUE(in(dir / "run/vorn"));
    EXPECT_EQ(fs::status(dir / "run/vorn").permissions(), fs::perms::owner_all);
    EXPECT_EQ(findLocalSocket("/somewhere/./Vorn/"), makeLocalSocketPlace("/somewhere/Vorn"));
    EXPECT_EQ(makeLocalSocketPlace("/somewhere/Vorn").filename(), "95906ab658f62b71.socket");  // for ever
    fs::permissions(dir / "run/vorn", fs::perms::all);
    EXPECT_TRUE(in(dir / temporaryName));  // somebody may have put something there
    fs::remove(dir / "run/vorn");
    fs::create_directory(dir / "others");
    fs::create_directory_symlink(dir / "others", dir / "run/vorn");
    EXPECT_TRUE(in(dir / temporaryName));
    fs::remove(dir / "run/vorn");
    dir.write("run/vorn", "");
    EXPECT_TRUE(in(dir / temporaryName));
    if (::geteuid() == 0) {
        fs::remove(dir / "run/vorn");
        fs::create_directory(dir / "run/vorn");
        ASSERT_EQ(::chown((dir / "run/vorn").c_str(), 12345, 12345), 0);
        EXPECT_TRUE(in(dir / temporaryName));
    }
    {
        const std::string deep = dir / std::string(90, 'd');
        fs::create_directories(deep);
        const test::ScopedEnvironment long_("XDG_RUNTIME_DIR", deep.c_str());
        EXPECT_TRUE(in(dir / temporaryName));
        const test::ScopedEnvironment relative("XDG_RUNTIME_DIR", "run");
        EXPECT_TRUE(in(dir / temporaryName));
    }
    EXPECT_EQ(sendRequest(dir / "nobody", "{}", 5s), std::nullopt);
    EXPECT_EQ(sendRequest(dir / std::string(200, 'n'), "{}", 5s), std::nullopt);
    EXPECT_EQ(sendRequest(dir.write("file", ""), "{}", 5s), std::nullopt);
}

}  // namespace
}  // namespace vorn

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--instance") == 0) {
        return vorn::runInstance(argc, argv);
    }
    testing::InitGoogleMock(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
