// vornctl connect and disconnect as a user runs them: real processes, unprivileged ones included.
#include <algorithm>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/status_line/status_line_snapshot.hpp"
#include "core/support/file.hpp"
#include "core/support/json_value.hpp"
#include "core/support/process/process.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::readAll;
using test::TemporaryDirectory;
using testing::HasSubstr;

constexpr const char* kSettings =
    R"({"env": {"A": "1"}, "statusLine": {"type": "command", "command": "echo 'mine'", "padding": 0}, "z": [1.0, null]})";

/// A user with Vorn installed in a place of its own.
class Home : public TemporaryDirectory {
public:
    Home() {
        fs::create_directories(path() / "install");
        fs::copy_file(VORN_CTL, path() / "install/vornctl");
        executable("install/vorn-bridge", "cat >/dev/null # " + std::string(600, '.'));
    }

    fs::path settings = path() / "claude/settings.json";
    fs::path record = path() / "vorn/integration.json";

    [[nodiscard]] ProcessResult run(const std::string& command, const std::string& before = "exec") const {
        return runProcess({.executable = "/bin/sh",
                           .arguments = {"-c", before + " " + (path() / "install/vornctl").string() + " " + command},
                           .environment = environment()});
    }
    [[nodiscard]] std::map<std::string, std::string> environment() const {
        return {{"PATH", "/usr/bin:/bin"},
                {"HOME", path()},
                {"CLAUDE_CONFIG_DIR", path() / "claude"},
                {"VORN_HOME", path() / "vorn"}};
    }
    void put(std::string_view text) const { write("claude/settings.json", text); }
    [[nodiscard]] JSONValue document() const { return JSONValue::parse(readAll(settings)); }
    /// Everything below, relative, one a line.
    [[nodiscard]] std::string tree() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(path())) {
            names.push_back(entry.path().lexically_relative(path()).string());
        }
        std::ranges::sort(names);
        std::string all;
        for (const std::string& name : names) {
            all += name + "\n";
        }
        return all;
    }
};

TEST(Connect, saysWhatRunsAndPutsEverythingBack) {
    const Home home;
    home.put(kSettings);
    const std::string before = home.tree();
    const ProcessResult dry = home.run("connect --dry-run");
    EXPECT_EQ(dry.status, 0) << dry.standardError;
    EXPECT_THAT(dry.standardOutput, HasSubstr("\n-{\"env\""));
    EXPECT_THAT(dry.standardOutput, HasSubstr("\n+    \"padding\": 0,\n"));
    EXPECT_THAT(dry.standardOutput, HasSubstr("then your own command:\n  echo 'mine'\n"));
    EXPECT_EQ(home.tree(), before);
    EXPECT_EQ(readAll(home.settings), kSettings);

    EXPECT_THAT(home.run("status --no-probe --json").standardOutput, HasSubstr("\"state\": \"notConnected\""));
    const ProcessResult connected = home.run("connect");
    EXPECT_EQ(connected.status, 0) << connected.standardError;
    EXPECT_THAT(connected.standardOutput, HasSubstr("then your own command:\n  echo 'mine'\n"));
    EXPECT_THAT(*home.document().member("statusLine")->member("command")->string(),
                testing::EndsWith("/vorn/bin/vorn-bridge' --chain"));
    EXPECT_EQ(readAll(home / "vorn/bin/vorn-bridge"), readAll(home / "install/vorn-bridge"));
    EXPECT_THAT(home.run("connect").standardOutput, HasSubstr("Already connected"));
    EXPECT_THAT(home.run("status --no-probe --json").standardOutput,
                HasSubstr("\"downstreamCommand\": \"echo 'mine'\",\n    \"state\": \"connected\""));

    const ProcessResult disconnected = home.run("disconnect");
    EXPECT_EQ(disconnected.status, 0) << disconnected.standardError;
    EXPECT_EQ(home.document(), JSONValue::parse(kSettings));
    EXPECT_EQ(home.run("disconnect").standardError,
              "vornctl: Vorn has no record of your own status line, so nothing was changed.\n");
    fs::remove(home / "install/vorn-bridge");
    EXPECT_EQ(home.run("connect").standardError, "vornctl: vorn-bridge is missing from the app bundle.\n");
    home.put("[]");
    const ProcessResult refused = home.run("disconnect --purge");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.standardError, "vornctl: Couldn't read Claude Code settings: top level isn't an object\n");
    EXPECT_THAT(home.run("status --no-probe --json").standardOutput, HasSubstr("\"state\": \"unknown\""));
}

TEST(Connect, keepsTheUsersCommandRunningForAClientWithoutItsEnvironment) {
    const Home home;
    home.put(kSettings);
    fs::copy_file(VORN_BRIDGE, home / "install/vorn-bridge", fs::copy_options::overwrite_existing);
    ASSERT_EQ(home.run("connect").status, 0);
    const std::string command = *home.document().member("statusLine")->member("command")->string();
    const ProcessResult line = runProcess(
        {.executable = "/bin/sh", .arguments = {"-c", command}, .environment = {{"HOME", home / "nowhere"}}});
    EXPECT_EQ(line.standardOutput, "mine\n") << line.standardError;
}

TEST(Connect, respectsProtectedSettings) {
    const Home home;
    home.put(kSettings);
    ::chmod(home.settings.c_str(), 0444);
    std::string before = "exec";
    if (::geteuid() == 0) {
        constexpr uid_t kNobody = 65534;
        before = "exec setpriv --reuid=65534 --regid=65534 --clear-groups";
        ASSERT_EQ(::chown(home.path().c_str(), kNobody, kNobody), 0);
        for (const auto& entry : fs::recursive_directory_iterator(home.path())) {
            ASSERT_EQ(::chown(entry.path().c_str(), kNobody, kNobody), 0);
        }
    }
    const ProcessResult result = home.run("connect", before);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.standardError, "vornctl: Couldn't write " + home.settings.string() + ": Permission denied\n");
    EXPECT_EQ(readAll(home.settings), kSettings);
    ::chmod(home.settings.c_str(), 0600);
    EXPECT_EQ(home.run("connect", before).status, 0);
}

TEST(Connect, saysWhyNothingIsHeardAndOfSilenceOnce) {
    const Home home;
    home.put(kSettings);
    ASSERT_EQ(home.run("connect").status, 0);
    const auto stamp = [](Seconds age) {
        return formatIso8601(systemNow() - age);
    };
    home.write("vorn/integration.json", R"({"installedAt": ")" + stamp(4h) + R"("})");
    StatusLineSnapshot{.observedAt = systemNow() - 3h, .rateLimits = {.fiveHour = {{.usedPercentage = 41.0}}}}.write(
        home / "vorn/statusline.json");
    std::string transcript;
    for (const Seconds age : {Seconds{2h}, Seconds{30min}}) {
        transcript += R"({"type":"assistant","timestamp":")" + formatIso8601Milliseconds(systemNow() - age) +
                      R"(","requestId":")" + stamp(age) + R"(","cwd":"/srv","message":{"id":")" + stamp(age) +
                      R"(","model":"claude-opus-5-5","usage":{"input_tokens":5,"output_tokens":400}}})" + "\n";
    }
    home.write("claude/projects/-srv/a.jsonl", transcript);
    EXPECT_THAT(home.run("status --no-probe").standardOutput, HasSubstr("Claude Code has been in use since"));
    const std::string again = home.run("status --no-probe").standardOutput;
    EXPECT_THAT(again,
                testing::AllOf(HasSubstr("Status line not heard since"), testing::Not(HasSubstr("in use since"))));
    EXPECT_THAT(home.run("status --no-probe --json").standardOutput, HasSubstr("\"state\": \"notHeard\""));

    home.put(R"({"disableAllHooks": true})");
    const ProcessResult connected = home.run("connect");
    EXPECT_THAT(connected.standardOutput,
                testing::AllOf(HasSubstr("not heard all the same: disableAllHooks is on in " + home.settings.string()),
                               testing::Not(HasSubstr("Connected"))));
    EXPECT_THAT(home.run("status --no-probe").standardOutput, HasSubstr("disableAllHooks is on"));
}

TEST(Connect, leavesAStrangersHomeAsItIs) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root";
    }
    const Home home;
    home.put(kSettings);
    const Instant now = systemNow();
    StatusLineSnapshot{.observedAt = now, .rateLimits = {.fiveHour = {{.usedPercentage = 41.0, .resetsAt = now + 1h}}}}
        .write(home / "vorn/statusline.json");
    const std::string before = home.tree();
    constexpr uid_t kNobody = 65534;
    for (const auto& entry : fs::recursive_directory_iterator(home.path())) {
        ASSERT_EQ(::chown(entry.path().c_str(), kNobody, kNobody), 0);
    }
    for (const char* command : {"connect", "connect --dry-run", "disconnect", "disconnect --purge", "plan bank 1"}) {
        SCOPED_TRACE(command);
        const ProcessResult refused = home.run(command);
        EXPECT_EQ(refused.status, 1);
        EXPECT_THAT(refused.standardError, testing::AllOf(HasSubstr("You are root"), HasSubstr("belongs to nobody")));
        EXPECT_EQ(home.tree(), before);
    }
    EXPECT_EQ(home.run("plan list").status, 0);
    const ProcessResult status = home.run("status --probe");
    EXPECT_EQ(status.status, 0) << status.standardError;
    EXPECT_THAT(status.standardOutput, HasSubstr("41%"));
    EXPECT_THAT(status.standardError, HasSubstr("nothing is stored"));
    EXPECT_EQ(home.tree(), before);
    EXPECT_EQ(readAll(home.settings), kSettings);
}

TEST(Disconnect, keepsACopyOfALineThatIsNotInTheSettings) {
    const Home home;
    home.put(kSettings);
    ASSERT_EQ(home.run("connect").status, 0);
    fs::remove_all(home / "vorn");
    EXPECT_THAT(home.run("disconnect --purge").standardError, HasSubstr("vornctl connect makes a new record"));
    EXPECT_THAT(home.run("connect").standardOutput, HasSubstr("settings.json.vorn-backup) has it:\n  echo 'mine'\n"));
    home.put(R"({"z": 1})");
    const ProcessResult purged = home.run("disconnect --purge");
    EXPECT_EQ(purged.status, 0) << purged.standardError;
    EXPECT_THAT(purged.standardOutput, HasSubstr("since you have taken it out"));
    EXPECT_THAT(purged.standardOutput,
                HasSubstr("another status line than your settings:\n  " + home.settings.string() + ".vorn-backup\n"));
    EXPECT_EQ(readAll(home.settings.string() + ".vorn-backup"), kSettings);
    EXPECT_FALSE(fs::exists(home / "vorn"));

    home.put(R"({"statusLine": {"command": "echo vorn-bridge"}})");
    const ProcessResult refused = home.run("connect");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.standardError, HasSubstr("  echo vorn-bridge\n"));
    EXPECT_THAT(home.run("connect --replace --dry-run").standardOutput, HasSubstr("+    \"command\": \"'"));
    EXPECT_EQ(home.run("connect --replace").status, 0);
}

TEST(Disconnect, purgesOnlyWhatIsVorns) {
    const Home home;
    home.put(kSettings);
    ASSERT_EQ(home.run("connect").status, 0);
    ASSERT_EQ(home.run("plan bank 1").status, 0);
    const fs::path outside = home.write("outside/history.jsonl", "mine");
    fs::create_symlink(outside, home / "vorn/history.jsonl");
    fs::create_symlink(outside.parent_path(), home / "vorn/probe");
    home.write("vorn/bin/mine", "mine");
    home.write("vorn/notes.txt", "mine");
    home.write("vorn/statusline.json.bak", "mine");
    home.write("vorn/probe.json/mine", "a folder in a file's place");
    const ProcessResult result = home.run("disconnect --purge");
    EXPECT_EQ(result.status, 0) << result.standardError;
    EXPECT_THAT(result.standardOutput, HasSubstr("  " + (home / "vorn/reset-plan.json").string() + "\n"));
    EXPECT_THAT(result.standardOutput, HasSubstr("not Vorn's:\n  " + (home / "vorn/bin/mine").string() + "\n"));
    EXPECT_EQ(home.tree(),
              "claude\nclaude/settings.json\ninstall\ninstall/vorn-bridge\ninstall/vornctl\n"
              "outside\noutside/history.jsonl\nvorn\nvorn/bin\nvorn/bin/mine\nvorn/notes.txt\nvorn/probe\n"
              "vorn/probe.json\nvorn/probe.json/mine\nvorn/statusline.json.bak\n");
    EXPECT_EQ(home.document(), JSONValue::parse(kSettings));
    EXPECT_THAT(home.run("disconnect --purge").standardOutput, HasSubstr("nothing of Vorn to remove"));

    // The settings go with the usual directory, and stay with one of several.
    home.write(".config/Vorn/Vorn.conf", "[General]");
    home.write(".config/Vorn/Vorn.conf.damaged", "[Gen");
    ASSERT_EQ(home.run("disconnect --purge").status, 0);
    EXPECT_TRUE(fs::exists(home / ".config/Vorn/Vorn.conf"));
    ASSERT_EQ(home.run("disconnect --purge", "exec env -u VORN_HOME").status, 0);
    EXPECT_FALSE(fs::exists(home / ".config/Vorn"));

    // Without a record the relay stays in use, and is not taken away.
    ASSERT_EQ(home.run("connect").status, 0);
    fs::remove(home.record);
    const ProcessResult refused = home.run("disconnect --purge");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.standardError, HasSubstr("vornctl connect makes a new record"));
    EXPECT_TRUE(fs::exists(home / "vorn/bin/vorn-bridge"));
}

}  // namespace
}  // namespace vorn
