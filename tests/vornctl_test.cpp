#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <ctime>
#include <fstream>
#include <future>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#endif

#include "core/support/file.hpp"
#include "core/support/process/process.hpp"
#include "core/support/time.hpp"
#include "tests/support/child_watch.hpp"
#include "tests/support/temporary_directory.hpp"

/// The built program, with a shell script for a client and a home of its own.
namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using nlohmann::json;
using test::readAll;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kNow = "2026-11-22T20:45:00Z";

std::vector<std::string> words(const std::string& line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// "Nov 22, 2026, 11:16pm (UTC)", as far ahead of the clock.
std::string resetIn(std::chrono::seconds ahead) {
    const std::time_t time = std::time(nullptr) + ahead.count();
    std::array<char, 64> text{};
    const std::tm utc = *std::gmtime(&time);
    std::strftime(text.data(), text.size(), "%b %e, %Y, %I:%M", &utc);
    return std::string(text.data()) + (utc.tm_hour < 12 ? "am (UTC)" : "pm (UTC)");
}

std::string usage(int session, int week = 61) {
    // The same resets in every answer of a test, so that all are of one window.
    static const std::string sessionReset = resetIn(3h);
    static const std::string weekReset = resetIn(90h);
    return fmt::format(
        "Current session: {}% used · resets {}\nCurrent week (all models): {}% used · resets {}\n\n"
        "Last 24h · 133 requests · 9 sessions\n  71% of your usage came from subagent-heavy sessions\n",
        session, sessionReset, week, weekReset);
}

class VornctlTest : public testing::Test {
protected:
    VornctlTest() {
        fs::create_directories(m_dir / "home");
        fs::create_directories(m_dir / "run");
        answers(usage(23));
    }

    /// `line`: arguments, with blanks between them.
    [[nodiscard]] ProcessResult run(const std::string& line, Seconds timeout = 20s) const {
        return runProcess(
            {.executable = VORNCTL, .arguments = words(line), .environment = m_environment, .timeout = timeout});
    }
    /// Of a run that shows readings.
    [[nodiscard]] json status(const std::string& options = {}) const {
        const ProcessResult result = run("status --json " + options);
        EXPECT_EQ(result.status, 0) << result.standardError;
        return json::parse(result.standardOutput, nullptr, false);
    }
    [[nodiscard]] double session(const std::string& options = {}) const {
        return status(options).at("windows").at(0).at("usedPercent");
    }

    /// The client from now on, as a shell script that knows the text alone.
    void client(const std::string& script) const {
        const char* const kTextAlone = "case \"$*\" in *stream-json*) echo unknown option >&2; exit 1; esac";
        m_dir.executable("bin/claude",
                         fmt::format("{}; cd '{}'; echo $$ >> pids; {}", kTextAlone, m_dir.path().string(), script));
    }
    void answers(const std::string& text) const {
        m_dir.write("answer.json", json{{"result", text}}.dump());
        client("cat answer.json");
    }
    /// How often it was run.
    [[nodiscard]] std::ptrdiff_t asked() const {
        std::ifstream pids(m_dir / "pids");
        return std::count(std::istreambuf_iterator<char>(pids), {}, '\n');
    }

    /// Makes what was recorded so much older.
    void age(Seconds time) const {
        json record = json::parse(readAll(m_vorn / "probe.json"));
        const auto asked = parseIso8601(record["lastProbeAt"].get<std::string>(), Fraction::forbidden);
        record["lastProbeAt"] = formatIso8601(asked.value() - time);
        record["probedAt"] = record["probedAt"].get<double>() - time.count();
        for (const char* list : {"readings", "pendingDrops"}) {
            for (json& reading : record[list]) {
                reading["observedAt"] = reading["observedAt"].get<double>() - time.count();
            }
        }
        m_dir.write("home/vorn/probe.json", record.dump());
        std::string lines;
        for (json& sample : history()) {
            sample["t"] = sample["t"].get<double>() - time.count();
            lines += sample.dump() + "\n";
        }
        m_dir.write("home/vorn/history.jsonl", lines);
    }
    [[nodiscard]] std::vector<json> history() const {
        std::vector<json> samples;
        std::ifstream file(m_vorn / "history.jsonl");
        for (std::string line; std::getline(file, line);) {
            samples.push_back(json::parse(line));
        }
        return samples;
    }
    /// Every path below the home folder and what the files hold.
    [[nodiscard]] std::map<std::string, std::string> home(bool withDirectories = true) const {
        std::map<std::string, std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(m_dir / "home")) {
            if (entry.is_regular_file()) {
                found[entry.path()] = readAll(entry.path());
            } else if (withDirectories) {
                found[entry.path()] = "directory";
            }
        }
        return found;
    }

    const test::TemporaryDirectory m_dir;
    const fs::path m_vorn = m_dir / "home/vorn";
    std::map<std::string, std::string> m_environment{{"HOME", m_dir / "home"},
                                                     {"VORN_HOME", m_vorn},
                                                     {"XDG_RUNTIME_DIR", m_dir / "run"},
                                                     {"CLAUDE_CONFIG_DIR", m_dir / "home/claude"},
                                                     {"PATH", (m_dir / "bin").string() + ":/usr/bin:/bin"},
                                                     {"TERM", "xterm-256color"},
                                                     {"TZ", "Europe/Berlin"}};
    const test::ChildWatch m_watch{m_dir / "pids"};
};

TEST_F(VornctlTest, ShowsEveryWindowAndFindingOfTheSamples) {
    const std::string kStripped = "of your usage ";
    int samples = 0;
    for (const auto& entry : fs::directory_iterator(VORN_USAGE_SAMPLES)) {
        SCOPED_TRACE(entry.path());
        ++samples;
        const std::string text = readAll(entry.path());
        answers(text);
        const json shown = status("--probe --now " + kNow);
        const std::string insights = shown.value("insights", json()).dump(-1, ' ', false);
        std::size_t windows = 0;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) {
            if (line.find("% used") != std::string::npos) {
                const json& window = shown.at("windows").at(windows++);
                EXPECT_EQ(window.at("usedPercent"), std::stod(line.substr(line.find(": ") + 2)));
                EXPECT_EQ(window.contains("resetsAt"), line.find("resets") != std::string::npos) << line;
            } else if (line.starts_with("  ") && std::isdigit(line[2]) != 0) {
                std::string finding = line.substr(line.find_first_not_of("0123456789% "));
                finding.erase(0, finding.starts_with(kStripped) ? kStripped.size() : 0);
                EXPECT_THAT(insights, HasSubstr(finding));
            }
        }
        EXPECT_EQ(shown.at("windows").size(), windows);
    }
    EXPECT_GE(samples, 4);
}

TEST_F(VornctlTest, TellsWhyTheClientGaveNothing) {
    const std::string unread = "Vorn couldn't read the /usage output. Claude Code may have changed its format.\n";
    const std::string notFound =
        "Couldn't find the claude command. Install Claude Code, or set its path in Settings.\n";
    const std::tuple<const char*, const char*, std::string> cases[] = {
        {"binary", "printf '\\377\\376{\\033[2J'", unread + "It printed:\n  \uFFFD\uFFFD{[2J\n"},
        {"killed", "kill -9 $$",
         "claude /usage failed:\nIt ended without a word; claude -p /usage in a terminal may tell more.\n"},
        {"several lines", "printf 'one\\r\\n\\ttwo \\033[31mthree\\n' >&2; exit 1",
         "claude /usage failed: one\n  two [31mthree\n"},
        {"too old", "echo \"error: unknown option '--safe-mode'\" >&2; exit 1",
         "claude /usage failed: error: unknown option '--safe-mode'\n"
         "This Claude Code is too old for Vorn; update it to 2.1.170 or newer with: claude update. Its "
         "status line works with Vorn already: vornctl connect\n"},
        {"no plan", "echo '{\"result\": \"/usage is only available for subscription plans\"}'",
         "Claude Code is not signed in to a plan here: run claude, then /login. With an API key there are no plan "
         "limits.\n"},
        {"no figures", "echo '{\"result\": \"You are currently using your subscription to power your usage\"}'",
         "Claude Code could not get the figures just now.\n"},
        {"an interpreter", "exec /usr/bin/env no-such-interpreter",
         "Claude Code is a script here that needs no-such-interpreter, which Vorn does not find.\n"
         "Install no-such-interpreter, or make it known where Vorn looks: a link in ~/.local/bin will do.\n"},
        {"an envelope", "echo '{\"is_error\": true, \"result\": \"Overloaded\"}'; exit 1",
         "claude /usage failed: Overloaded\n"},
    };
    for (const auto& [name, script, error] : cases) {
        client(script);
        const ProcessResult result = run("status --probe");
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_EQ(result.standardError, error);
        m_watch.expectNothingLeft();
    }
    for (const char* path : {"/nowhere/claude", "/dev/null", VORN_USAGE_SAMPLES}) {
        EXPECT_EQ(run(std::string("status --probe --claude ") + path).standardError, notFound) << path;
    }
    EXPECT_THAT(run("status --claude /nowhere/claude").standardError, HasSubstr("Not asked again before"));
    answers(usage(23));
    EXPECT_EQ(session(), 23) << "a client that is there now is asked at once";
}

TEST_F(VornctlTest, AnswersWhereTheClientOrTheSystemMisbehaves) {
    client("sleep 60 & echo $! >> pids; cat answer.json");  // a child that keeps the pipe
    EXPECT_EQ(session("--probe"), 23);
    m_watch.expectNothingLeft();
    answers(usage(24));
    m_environment.erase("HOME");
    EXPECT_EQ(session("--probe"), 24);
    // Neither the history nor anything else can be written.
    fs::remove_all(m_vorn);
    for (const char* name : {"history.jsonl", "probe.json", "reset-plan.json"}) {
        fs::create_directories(m_vorn / name / "in the way");
    }
    const auto before = asked();
    EXPECT_EQ(session(), 24);
    EXPECT_EQ(session(), 24);
    EXPECT_EQ(asked(), before + 1) << "what was asked is remembered elsewhere";
    client("exit 1");
    EXPECT_THAT(run("status --probe").standardError, StartsWith("claude /usage failed:"));
    EXPECT_EQ(session(), 24);
    EXPECT_EQ(asked(), before + 2);
    EXPECT_EQ(fs::status(m_dir / "run/vorn").permissions(), fs::perms::owner_all);
    // A folder that somebody else may have prepared is none.
    fs::remove_all(m_dir / "run/vorn");
    fs::create_directories(m_dir / "elsewhere");
    fs::create_directory_symlink(m_dir / "elsewhere", m_dir / "run/vorn");
    m_environment["TMPDIR"] = m_dir / "run";
    answers(usage(24));
    EXPECT_EQ(session(), 24);
    EXPECT_TRUE(fs::is_empty(m_dir / "elsewhere"));
    for (const char* change : {"plan bank 2", "plan redeem"}) {
        EXPECT_THAT(run(change).standardError, StartsWith("vornctl: cannot change the plan: " + m_vorn.string()));
    }
    m_environment["VORN_HOME"] = m_dir / "answer.json";
    const ProcessResult result = run("status");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.standardError,
                AllOf(StartsWith("Couldn't run claude: "), HasSubstr(": Not a directory\nVorn runs it in an ")));
    EXPECT_EQ(run("plan bank 2").status, 1);
}

TEST_F(VornctlTest, ExplainsWrongUsage) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "vornctl: a command is required\nRun vornctl --help for more.\n"},
        {"plan drop", "vornctl plan: there is no command drop\n"},
        {"plan add", "vornctl plan add: when is required\n"},
        {"plan bank 99999999999999999999", "not in range 0 to 1000000"},
        {"status --now yesterday", "expected a moment such as 2026-11-22T20:45:00Z, not yesterday"},
        {"status --format xml", "xml not in {text,plain,tmux,waybar,json}"},
        {"status --json --format tmux", "--json excludes --format"},
        {"status now", "The following argument was not expected: now"},
        {"activity --since 0h", "expected a span such as 90m, 24h or 7d, not 0h"}};
    for (const auto& [line, error] : cases) {
        const ProcessResult result = run(line);
        EXPECT_EQ(result.status, 2) << line;
        EXPECT_THAT(result.standardError, HasSubstr(error));
        EXPECT_EQ(result.standardOutput, "");
    }
    for (const char* command : {"", "status", "activity", "plan", "plan add"}) {
        const ProcessResult result = run(std::string(command) + " --help");
        EXPECT_THAT(result.status == 0 ? result.standardOutput : "", HasSubstr("Usage: vornctl"));
    }
    EXPECT_EQ(asked(), 0);
    EXPECT_EQ(home().size(), 0U);
}

TEST_F(VornctlTest, AsksOnlyWhenTheReadingIsOld) {
    EXPECT_THAT(run("status --no-probe").standardError, StartsWith("No reading yet.\n"));
    EXPECT_EQ(asked(), 0);
    const json first = status();
    EXPECT_EQ(status().at("insights"), first.at("insights"));
    EXPECT_EQ(asked(), 1);
    EXPECT_EQ(session("--no-probe --now " + formatIso8601(systemNow() + 4h)), 0);  // over; the week is not
    age(290s);
    EXPECT_EQ(session(), 23);
    EXPECT_EQ(asked(), 1);
    EXPECT_EQ(session("--probe"), 23);
    EXPECT_EQ(asked(), 2);
    age(301s);
    answers(usage(25));
    EXPECT_EQ(session("--no-probe"), 23);
    EXPECT_EQ(asked(), 2);
    EXPECT_EQ(session(), 25);
    // Another program, or the application, knows it as well.
    EXPECT_EQ(history().back().at("k"), "session");
    EXPECT_EQ(history().size(), 3U);  // an unchanged week is not repeated
    fs::remove(m_vorn / "probe.json");
    EXPECT_EQ(session("--no-probe"), 25);
    // Another day: nothing that is over counts, wherever it is remembered.
    EXPECT_EQ(session("--probe"), 25);
    EXPECT_EQ(run("status --no-probe --now 2100-01-01T00:00:00Z").status, 1);
    EXPECT_EQ(run("status --no-probe --now 1999-01-01T00:00:00Z").status, 1);
    age(-3600s);  // a clock that was ahead
    answers(usage(5));
    EXPECT_EQ(session(), 5);
    // A limit of which the client tells no more.
    answers(usage(6) + "Current week (Sonnet only): 9% used · resets " + resetIn(90h));
    EXPECT_EQ(status("--probe").at("windows").size(), 3U);
    answers(usage(6));
    age(301s);
    const auto before = asked();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(status().at("windows").size(), 3U);
    }
    EXPECT_EQ(asked(), before + 1);
}

TEST_F(VornctlTest, LeavesAFailingClientAlone) {
    EXPECT_EQ(session(), 23);
    age(301s);
    client("echo \"unknown option '--safe-mode'\" >&2; exit 1");
    const auto runs = [&](Seconds older, const std::string& options) {
        age(older);
        const ProcessResult result = run("status " + options);
        EXPECT_EQ(result.status, 0);  // a current reading is shown all the same
        EXPECT_THAT(result.standardOutput, HasSubstr("23%"));
        EXPECT_THAT(result.standardError, AllOf(HasSubstr("--safe-mode"), HasSubstr("too old for Vorn")));
        return asked();
    };
    EXPECT_EQ(runs(0s, ""), 2);
    const ProcessResult again = run("status --json");
    EXPECT_THAT(again.standardError, HasSubstr("Not asked again before"));
    const json failure = json::parse(again.standardOutput).at("failure");
    EXPECT_TRUE(failure.contains("message") && failure.contains("advice") && failure.contains("retryAt"));
    EXPECT_EQ(failure.at("kind"), "commandFailed");
    EXPECT_EQ(runs(590s, ""), 2);
    EXPECT_EQ(runs(11s, ""), 3);
    answers(usage(26));
    EXPECT_EQ(session("--probe"), 26);
    age(301s);
    EXPECT_EQ(session(), 26);
    EXPECT_EQ(asked(), 5);
}

TEST_F(VornctlTest, AsksOnceForAllWhoWantToKnow) {
    client("echo >> started; while [ ! -e go ]; do sleep 0.02; done; cat answer.json");
    std::vector<std::future<double>> sessions;
    for (int i = 0; i < 4; ++i) {
        sessions.push_back(std::async(std::launch::async, [this] { return session(); }));
    }
    m_dir.write("go", "");
    for (auto& known : sessions) {
        EXPECT_EQ(known.get(), 23);
    }
    EXPECT_EQ(asked(), 1);

    // Who is killed while asking leaves the turn to the next, at once.
    age(301s);
    fs::remove(m_dir / "go");
    fs::remove(m_dir / "started");
    const std::string killed =
        fmt::format("{} status & while [ ! -e {}/started ]; do sleep 0.02; done; kill -9 $!; touch {}/go", VORNCTL,
                    m_dir.path().string(), m_dir.path().string());
    runProcess({.executable = "/bin/sh", .arguments = {"-c", killed}, .environment = m_environment});
    EXPECT_EQ(session(), 23);
    EXPECT_EQ(asked(), 3);
    // Nobody waits who does not ask, or asks whatever others do.
    const auto turn = FileLock::acquire(m_vorn / "probing.lock", 5s);
    ASSERT_TRUE(turn);
    EXPECT_EQ(session(), 23);
    EXPECT_EQ(session("--probe"), 23);
    EXPECT_EQ(session("--probe --now " + formatIso8601(systemNow())), 23);
    EXPECT_EQ(asked(), 5);
}

TEST_F(VornctlTest, KeepsWhatIsAnnouncedWhileItAsks) {
    const std::string redeem =
        fmt::format("VORN_HOME='{}' {} plan redeem --scope week >&2 || exit 1; ", m_vorn.string(), VORNCTL);
    for (const char* outcome : {"cat answer.json", "exit 1"}) {
        fs::remove_all(m_vorn);
        client(redeem + outcome);
        EXPECT_EQ(run("status --probe").status, std::string(outcome) == "exit 1" ? 1 : 0);
        const json record = json::parse(readAll(m_vorn / "probe.json"));
        EXPECT_EQ(record.at("expectedResets").size(), 1U) << record;
        EXPECT_EQ(record.contains("readings"), std::string(outcome) != "exit 1");
        EXPECT_TRUE(record.contains("lastProbeAt"));
    }
}

TEST_F(VornctlTest, HonoursWhatWasChosenInTheApplication) {
    const std::string reply = json{{"type", "assistant"},
                                   {"timestamp", formatIso8601Milliseconds(systemNow() - 600s)},
                                   {"cwd", "/p"},
                                   {"requestId", "r"},
                                   {"message",
                                    {{"id", "m"},
                                     {"model", "claude-sonnet-4-5"},
                                     {"usage", {{"input_tokens", 1000}, {"output_tokens", 200}}}}}}
                                  .dump();
    m_dir.write("home/claude/projects/a/s.jsonl", reply + "\n");
    const auto basis = [&](const std::string& options = {}) {
        return status(options).at("windows").at(0).at("rateBasis").get<std::string>();
    };
    const auto choose = [&](const json& choices) {
        m_dir.write("home/vorn/choices.json", choices.dump());
    };
    EXPECT_EQ(basis(), "localActivity");
    choose({{"useLocalActivity", false}, {"claudePath", m_dir.executable("chosen", "exit 3").string()}});
    EXPECT_EQ(basis(), "windowAverage");
    EXPECT_EQ(basis("--rates"), "windowAverage");
    EXPECT_THAT(run("status --probe").standardError, StartsWith("claude /usage failed:"));
    EXPECT_EQ(asked(), 1);
    EXPECT_EQ(session("--probe --claude " + (m_dir / "bin/claude").string()), 23);
    EXPECT_EQ(asked(), 2);
    choose({{"claudePath", "/nowhere/claude"}, {"refreshMinutes", 60}});
    EXPECT_THAT(run("status --probe").standardError, StartsWith("Couldn't find the claude command."));
    age(3600s);  // longer than after one failure with the usual interval
    EXPECT_THAT(run("status").standardError, HasSubstr("Not asked again before"));
}

TEST_F(VornctlTest, BelievesAnEarlyResetWhenItIsConfirmedOrAnnounced) {
    answers(usage(80));
    EXPECT_EQ(session(), 80);
    answers(usage(20));
    EXPECT_EQ(session("--probe"), 80);  // one low reading may be stale
    age(301s);
    EXPECT_EQ(session(), 20);
    EXPECT_EQ(session("--no-probe"), 20);
    EXPECT_EQ(history().back().at("u"), 20);
    EXPECT_EQ(history().size(), 3U);  // the disbelieved are not recorded

    answers(usage(3));
    EXPECT_EQ(run("plan redeem --scope week").status, 0);
    EXPECT_EQ(session("--probe"), 20);  // that one was about the week
    EXPECT_EQ(run("plan redeem --scope session").status, 0);
    EXPECT_EQ(session("--no-probe"), 20);  // an answer from before is not what was announced
    client("exit 1");
    EXPECT_EQ(session("--probe"), 20);
    answers(usage(3, 2));
    const json windows = status("--probe").at("windows");
    EXPECT_EQ(windows.at(0).at("usedPercent"), 3);
    EXPECT_EQ(windows.at(1).at("usedPercent"), 2);
    EXPECT_FALSE(json::parse(readAll(m_vorn / "probe.json")).contains("expectedResets"));
}

TEST_F(VornctlTest, UsesWhatTheRelayLeft) {
    const double reset = std::floor(secondsSince1970(systemNow() + 3h));
    const auto leave = [&](double percent, Seconds ago) {
        m_dir.write("home/vorn/statusline.json",
                    json{{"observed_at", secondsSince1970(systemNow() - ago)},
                         {"rate_limits", {{"five_hour", {{"used_percentage", percent}, {"resets_at", reset}}}}}}
                        .dump());
    };
    leave(40.5, 30s);
    EXPECT_EQ(status().at("source"), "statusLine");
    EXPECT_EQ(session("--no-probe"), 40.5);
    EXPECT_EQ(history().back().at("u"), 40.5);
    EXPECT_EQ(asked(), 0);

    // A fall that the status line tells of is asked about at once, and believed when the client says so, too.
    leave(5, 1s);
    EXPECT_EQ(session("--no-probe"), 40.5);
    answers(fmt::format("Current session: 5% used · resets {}\n", resetIn(3h)));
    EXPECT_EQ(session(), 5);
    EXPECT_EQ(asked(), 1);
}

TEST_F(VornctlTest, WritesNothingForAnotherMomentOrADemonstration) {
    EXPECT_EQ(session(), 23);
    fs::create_directories(m_vorn / "probe");
    const auto before = home();
    EXPECT_EQ(status("--probe --now " + kNow).at("now"), kNow);
    EXPECT_EQ(home(), before);
    fs::remove_all(m_vorn);
    const auto runs = asked();
    std::set<std::string> outputs;
    for (const std::string scenario : {"comfortable", "watch", "at-risk", "limited", "planned-reset"}) {
        for (const std::string how : {"--rates", "--json", "--format waybar", "--probe"}) {
            const std::string line = fmt::format("status --now {} --demo {} {}", kNow, scenario, how);
            const std::string output = run(line).standardOutput;
            EXPECT_EQ(run(line).standardOutput, output);
            EXPECT_EQ(output.starts_with("Demonstration, invented figures\n"), how == "--rates" || how == "--probe");
            outputs.insert(output);
        }
    }
    EXPECT_EQ(outputs.size(), 20U);
    EXPECT_EQ(asked(), runs);
    EXPECT_EQ(home().size(), 0U);
}

TEST_F(VornctlTest, KnowsNothingLaterThanTheMomentItIsGiven) {
    const Instant now = systemNow();
    std::string lines;
    for (const auto& [ago, percent] : {std::pair{3000s, 10}, {1500s, 15}, {0s, 80}}) {
        lines +=
            json{
                {"k", "session"}, {"u", percent}, {"t", secondsSince1970(now - ago)}, {"r", secondsSince1970(now + 1h)}}
                .dump() +
            "\n";
    }
    m_dir.write("home/vorn/history.jsonl", lines);
    const std::string moment = " --now " + formatIso8601(now - 1400s);
    const json window = status("--no-probe" + moment).at("windows").at(0);
    EXPECT_EQ(window.at("usedPercent"), 15);
    EXPECT_NEAR(window.at("ratePerHour"), 12, 1e-6);
    EXPECT_EQ(json::parse(run("export history --format json" + moment).standardOutput).size(), 2U);
}

TEST_F(VornctlTest, DemonstratesOnlyWhereThereIsNothingElse) {
    const ProcessResult empty = run("status --demo-if-empty --claude /nowhere");
    EXPECT_EQ(empty.status, 1);
    EXPECT_THAT(empty.standardError, StartsWith("Couldn't find the claude command."));
    EXPECT_THAT(empty.standardOutput, AllOf(StartsWith("\nThis is what Vorn shows "),
                                            HasSubstr("Demonstration, invented figures\n\n▲ Ease off to ")));
    EXPECT_EQ(run("status --demo-if-empty --claude /nowhere --format plain").standardOutput,
              "– Couldn't find the claude command. Install Claude Code, or set its path in Settings.\n");
    EXPECT_THAT(run("status --demo-if-empty --probe").standardOutput, Not(HasSubstr("Demonstration")));
}

TEST_F(VornctlTest, SpeaksToBarsAndPrompts) {
    const auto shown = [&](const std::string& format) {
        return run("status --demo at-risk --now " + kNow + " --format " + format).standardOutput;
    };
    EXPECT_EQ(shown("plain"), "▲ 5h 72% ↓0.5× demonstration · Limit in ~1h 5m at this pace\n");
    EXPECT_EQ(shown("tmux"), "#[fg=colour208]5h 72% ↓0.5× demonstration#[default]\n");
    EXPECT_EQ(json::parse(shown("json")).at("headline").at("status"), "atRisk");
    const std::string waybar = shown("waybar");
    EXPECT_EQ(std::count(waybar.begin(), waybar.end(), '\n'), 1);
    const json module = json::parse(waybar);
    EXPECT_EQ(
        fmt::format("{} {} {}", module.at("text").dump(), module.at("class").dump(), module.at("percentage").dump()),
        R"("5h 72% ↓0.5× demonstration" "at-risk" 72)");
    EXPECT_THAT(module.at("tooltip"), StartsWith("Ease off to 54% of your current pace\nSession (5h) is the"));
    const ProcessResult none = run("status --no-probe --format tmux");
    EXPECT_EQ(none.standardOutput, "\n");
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(json::parse(run("status --no-probe --format waybar").standardOutput).at("class"), "unknown");
}

TEST_F(VornctlTest, ObeysNoTextFromOutside) {
    const std::string name = "\x1b[31m<b>#[fg=red]\x07" + std::string(500, 'm');
    answers("Current week (" + name + "): 100% used\nLast 24h · 1 requests\n  50%  " + name + " · \x1b]0;x\x07\n");
    EXPECT_EQ(status().at("windows").at(0).at("kind"), "week:" + name);
    EXPECT_EQ(run("plan add 2999-01-01T00:00:00Z --note " + name).status, 0);
    for (const char* line : {"status", "status --json", "status --format plain", "status --format tmux",
                             "status --format waybar", "plan list", "plan list --json"}) {
        const ProcessResult result = run(line);
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.standardOutput, AllOf(HasSubstr("fg=red"), Not(HasSubstr("\x1b")), Not(HasSubstr("\x07"))));
    }
    EXPECT_THAT(run("status --format tmux").standardOutput, HasSubstr("##[fg=red]"));
    EXPECT_THAT(run("status --format waybar").standardOutput, HasSubstr("&lt;b&gt;"));
}

TEST_F(VornctlTest, KeepsThePlan) {
    const std::tuple<std::string, int, const char*> steps[] = {
        {"list", 0, "None. Add one when a reset is announced or you expect one, and Vorn will plan each limit it cuts"},
        {"add 2998-11-26T18:00:00Z --scope week --note late", 0,
         "  1  2998-11-26 19:00  Weekly limits  late\n0 resets"},
        {"add 2997-05-01T00:00:00Z", 0, "  1  2997-05-01 02:00  All limits     \n  2  2998"},
        {"add 3am", 0, "  3  2998"},
        {"add soon", 1, "vornctl: cannot read \"soon\" as a time; write "},
        {"add 2020-01-01T00:00:00Z", 1, "vornctl: 2020-01-01 01:00 has passed; "},
        {"add 9999-12-31T23:59:59+99:00", 1, "cannot read"},
        {"remove 4", 1, "vornctl: there is no planned reset 4; vornctl plan list shows the numbers\n"},
        {"remove 1", 0, "  2  2998"},
        {"bank 1", 0, "1 reset banked\n"},
        {"redeem", 0, "Vorn takes the drop at face value instead of treating it as a stale reading.\n"},
        {"redeem", 0, "0 resets banked\n"},
        {"list --now 2998-11-26T19:00:00Z", 0, "     has passed; dropped a day after its date\n"},
        {"list --now 2998-11-28T19:00:00Z", 0, "None. "}};
    for (const auto& [line, status, output] : steps) {
        const ProcessResult result = run("plan " + line);
        EXPECT_EQ(result.status, status) << line << result.standardError;
        EXPECT_THAT(status == 0 ? result.standardOutput : result.standardError, HasSubstr(output));
    }
    const json plan = json::parse(run("plan list --json").standardOutput);
    EXPECT_EQ(plan.at("planned").size(), 2U);
    const std::string id = plan.at("planned").at(1).at("id");
    EXPECT_EQ(run("plan remove " + id.substr(0, 8)).status, 0);

    // A slip in an edit by hand costs nothing but the plan's effect.
    const std::string damaged = readAll(m_vorn / "reset-plan.json") + "}";
    m_dir.write("home/vorn/reset-plan.json", damaged);
    EXPECT_THAT(run("plan list").standardOutput, StartsWith("None. "));
    EXPECT_EQ(run("plan bank 3").status, 0);
    EXPECT_EQ(json::parse(readAll(m_vorn / "reset-plan.json")).at("banked"), 3);
    EXPECT_EQ(readAll(m_vorn / "reset-plan.json.damaged"), damaged);
}

TEST_F(VornctlTest, TellsWhatWasDoneHere) {
    const auto reply = [](const char* time, const char* project, int id) {
        const json tokens{{"input_tokens", 1000}, {"output_tokens", 200}, {"cache_read_input_tokens", 5000}};
        const json message{{"id", fmt::format("m{}", id)}, {"model", "claude-sonnet-4-5"}, {"usage", tokens}};
        const json line{{"type", "assistant"},
                        {"timestamp", time},
                        {"cwd", project},
                        {"requestId", fmt::format("r{}", id)},
                        {"message", message}};
        return line.dump() + "\n";
    };
    m_dir.write("home/claude/projects/a/s.jsonl", reply("2026-11-22T20:30:00.000Z", "/home/me/\x1b[31malpha", 1) +
                                                      reply("2026-11-22T10:00:00.000Z", "/home/me/项目", 2) +
                                                      reply("2026-11-18T10:00:00.000Z", "/home/me/beta", 3) +
                                                      reply("2026-11-22T21:00:00.000Z", "/home/me/later", 4) + "{torn");
    const auto report = [&](const std::string& options) {
        return run("activity --now " + kNow + " " + options);
    };
    const json day = json::parse(report("--json").standardOutput);
    EXPECT_EQ(day.at("events"), 2);
    EXPECT_EQ(day.at("weight"), 2 * (1000 + 200 * 5 + 5000 * 0.1));
    EXPECT_EQ(day.at("weightOfLastSeconds").at("604800"), 7500);
    EXPECT_EQ(day.at("timeline").size(), 96U);
    EXPECT_EQ(day.at("projects").size(), 2U);
    EXPECT_EQ(day.at("lastEventAt"), "2026-11-22T20:30:00.000Z");
    const ProcessResult text = report("--since 1h");
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.standardOutput, AllOf(StartsWith("Local activity of the last 1h · 1 reply, weight 2.5k\n"),
                                           HasSubstr("[31malpha"), Not(HasSubstr("\x1b")), Not(HasSubstr("beta"))));
    const ProcessResult missing = report("--root " + (m_dir / "none").string());
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.standardError, HasSubstr("there are no transcripts in " + (m_dir / "none/projects").string()));
    fs::create_directories(m_dir / "quiet/projects");
    EXPECT_THAT(report("--root " + (m_dir / "quiet").string()).standardOutput, HasSubstr("Nothing found in "));

    const auto table = [&](const std::string& options) {
        return run("export activity --now " + kNow + " " + options);
    };
    EXPECT_THAT(table("--since 1h").standardOutput,
                AllOf(StartsWith("time"), HasSubstr("\n2026-11-22T20:30:00.000Z,"), Not(HasSubstr("beta"))));
    EXPECT_EQ(json::parse(table("--format json").standardOutput).size(), 3U);
    EXPECT_EQ(table("--format json --root " + (m_dir / "quiet").string()).standardOutput, "[]\n");
    const std::string file = (m_dir / "table.csv").string();
    EXPECT_EQ(table("--output " + file).status, 0);
    const std::string written = readAll(file);
    EXPECT_THAT(written, HasSubstr(",beta,"));
    const ProcessResult none = table("--output " + file + " --root " + (m_dir / "none").string());
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.standardError, missing.standardError);
    EXPECT_EQ(readAll(file), written) << "not replaced by nothing";
    EXPECT_EQ(home(false).size(), 1U);
}

/// A program at a terminal of its own.
class PseudoTerminal {
public:
    PseudoTerminal(const std::string& line, const std::map<std::string, std::string>& environment,
                   unsigned short columns, unsigned short rows) {
        const winsize size{.ws_row = rows, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
        m_pid = ::forkpty(&m_master, nullptr, nullptr, &size);
        if (m_pid == 0) {
            std::vector<std::string> texts = words("vornctl " + line);
            std::vector<std::string> variables;
            std::ranges::transform(environment, std::back_inserter(variables), [](const auto& variable) {
                return fmt::format("{}={}", variable.first, variable.second);
            });
            ::execve(VORNCTL, pointers(texts).data(), pointers(variables).data());
            ::_exit(127);
        }
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;
    ~PseudoTerminal() { ::close(m_master); }

    /// Reads until `wanted` was drawn `times` times, or for 15 seconds.
    bool waitFor(const std::string& wanted, int times = 1) {
        const auto deadline = std::chrono::steady_clock::now() + 15s;
        while (count(wanted) < times) {
            pollfd descriptor{.fd = m_master, .events = POLLIN, .revents = 0};
            std::array<char, 4096> bytes{};
            const bool isLate = std::chrono::steady_clock::now() > deadline || ::poll(&descriptor, 1, 1000) < 0;
            if (isLate) {
                return false;
            }
            if (descriptor.revents != 0) {
                const auto length = ::read(m_master, bytes.data(), bytes.size());
                if (length <= 0) {
                    return count(wanted) >= times;
                }
                m_drawn.append(bytes.data(), static_cast<std::size_t>(length));
            }
        }
        return true;
    }
    void type(const char* keys) const { EXPECT_EQ(::write(m_master, keys, std::strlen(keys)), std::strlen(keys)); }
    /// Its exit status, once it has ended.
    int end() {
        waitFor("what is never drawn");
        int status = 0;
        ::waitpid(m_pid, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    [[nodiscard]] const std::string& drawn() const { return m_drawn; }

private:
    static std::vector<char*> pointers(std::vector<std::string>& texts) {
        std::vector<char*> list;
        std::ranges::transform(texts, std::back_inserter(list), [](std::string& text) { return text.data(); });
        list.push_back(nullptr);
        return list;
    }
    [[nodiscard]] int count(const std::string& wanted) const {
        int found = 0;
        for (std::size_t at = m_drawn.find(wanted); at != std::string::npos; at = m_drawn.find(wanted, at + 1)) {
            ++found;
        }
        return found;
    }

    int m_master = -1;
    pid_t m_pid = -1;
    std::string m_drawn;
};

TEST_F(VornctlTest, ExportsNothingThatSteersATerminal) {
    m_dir.write("home/claude/projects/a/s.jsonl",
                R"({"type":"assistant","timestamp":"2026-11-22T20:30:00.000Z","cwd":"/p/\u001b[31malpha",)"
                R"("requestId":"r","message":{"id":"m","model":"claude","usage":{"input_tokens":1}}})"
                "\n");
    PseudoTerminal terminal("export activity --now " + kNow, m_environment, 80, 24);
    EXPECT_EQ(terminal.end(), 0);
    EXPECT_THAT(terminal.drawn(), AllOf(HasSubstr("Z,[31malpha,claude,1,"), Not(HasSubstr("\x1b"))));
}

TEST_F(VornctlTest, ColoursATerminalUnlessAskedNotTo) {
    const std::string line = "status --demo limited --now " + kNow;
    EXPECT_THAT(run(line).standardOutput, AllOf(HasSubstr("####"), Not(HasSubstr("\x1b")), Not(HasSubstr("█"))));
    PseudoTerminal coloured(line, m_environment, 80, 24);
    EXPECT_EQ(coloured.end(), 0);
    EXPECT_THAT(coloured.drawn(), AllOf(HasSubstr("████"), HasSubstr("\x1b[1;31m■ Limited\x1b[0m")));
    for (const auto& [name, value] : {std::pair("NO_COLOR", "1"), std::pair("TERM", "dumb")}) {
        auto environment = m_environment;
        environment[name] = value;
        PseudoTerminal plain(line, environment, 50, 24);
        EXPECT_EQ(plain.end(), 0);
        EXPECT_THAT(plain.drawn(), AllOf(HasSubstr("####"), Not(HasSubstr("\x1b")), Not(HasSubstr("█"))));
    }
}

TEST_F(VornctlTest, WatchesUntilInterrupted) {
    const std::string home = "\x1b[H";
    client("exit 1");
    PseudoTerminal terminal("status --watch", m_environment, 60, 6);
    ASSERT_TRUE(terminal.waitFor("claude /usage failed:"));
    EXPECT_THAT(terminal.drawn(), StartsWith("\x1b[?1049h\x1b[?25l"));
    PseudoTerminal small("status --watch --demo at-risk", m_environment, 60, 6);
    ASSERT_TRUE(small.waitFor("\x1b[J", 2));  // the second drawing
    small.type("\x03");
    EXPECT_EQ(small.end(), 0);
    EXPECT_THAT(small.drawn(), AllOf(HasSubstr("Demonstration"), EndsWith("\x1b[?25h\x1b[?1049l")));
    const std::string drawing = small.drawn().substr(small.drawn().rfind(home));
    EXPECT_LT(std::count(drawing.begin(), drawing.end(), '\n'), 6);  // one more would scroll
    ASSERT_TRUE(terminal.waitFor("\x1b[J", 2));
    terminal.type("\x03");
    EXPECT_EQ(terminal.end(), 0);
    EXPECT_EQ(asked(), 1);  // a failure is not repeated at every turn
    // On a pipe: drawing after drawing, and no control over a screen.
    const ProcessResult piped = run("status --watch --demo at-risk --format plain", 1s);
    EXPECT_EQ(piped.end, ProcessResult::End::timedOut);
    EXPECT_THAT(piped.standardOutput, AllOf(StartsWith("▲ 5h 72%"), EndsWith("\n"), Not(HasSubstr("\x1b"))));
}

TEST_F(VornctlTest, InterruptsTakeTheClientAlong) {
    client("sleep 60 & echo $! >> pids; echo asked > started; wait");
    for (const bool isWatching : {false, true}) {
        fs::remove(m_dir / "started");
        PseudoTerminal terminal(isWatching ? "status --watch" : "status", m_environment, 80, 24);
        const auto deadline = std::chrono::steady_clock::now() + 10s;
        while (!fs::exists(m_dir / "started") && std::chrono::steady_clock::now() < deadline) {
            ::usleep(5000);
        }
        terminal.type("\x03");
        EXPECT_EQ(terminal.end(), isWatching ? 0 : 130);
        EXPECT_EQ(terminal.drawn().ends_with("\x1b[?1049l"), isWatching);
    }
    EXPECT_FALSE(fs::exists(m_vorn / "probe.json"));
    const std::string full = std::string(VORNCTL) + " status --demo watch > /dev/full";
    const ProcessResult lost = runProcess({.executable = "/bin/sh", .arguments = {"-c", full}, .environment = {}});
    EXPECT_EQ(lost.status, 1);
    EXPECT_EQ(lost.standardError, "vornctl: the output could not be written\n");
}

}  // namespace
}  // namespace vorn
