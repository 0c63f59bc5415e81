// Every way in which somebody could lose the status line that they had.
#include "core/status_line/status_line_connection.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/status_line/connection_state.hpp"
#include "core/support/executable_path.hpp"
#include "core/support/file.hpp"
#include "core/wording/connection_words.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::readAll;
using test::TemporaryDirectory;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Reason = ConnectionRefused::Reason;

const Instant kNow = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + 12h;
constexpr const char* kMine = R"({"statusLine": {"type": "command", "command": "mine", "padding": 0}})";

/// A user with Vorns in several places and one Claude Code.
class Home : public TemporaryDirectory {
public:
    Home() {
        replaceFile({.path = runningExecutable().parent_path() / "vorn-bridge",
                     .content = "#!/bin/sh\ncat >/dev/null\n",
                     .mode = 0755});
    }

    fs::path settings = path() / "claude/settings.json";

    [[nodiscard]] StatusLineIntegration vorn(const std::string& name = "vorn") const {
        return StatusLineIntegration({.settings = settings,
                                      .record = path() / name / "integration.json",
                                      .bridge = path() / name / "bin/vorn-bridge"});
    }
    void put(std::string_view text) const { TemporaryDirectory::write("claude/settings.json", text); }
    void putCommand(const std::string& command) const {
        put(JSONValue(JSONValue::Object{{"statusLine", JSONValue::Object{{"command", command}}}}).dump());
    }
    [[nodiscard]] JSONValue document() const { return JSONValue::parse(readAll(settings)); }
    [[nodiscard]] std::string command() const {
        const JSONValue all = document();
        const std::string* text = commandOf(all.member("statusLine"));
        return text == nullptr ? "" : *text;
    }
    [[nodiscard]] std::string relayLine(const std::string& name = "vorn") const {
        return relayCommand(path() / name / "bin/vorn-bridge");
    }
    [[nodiscard]] std::string connect(const std::string& name = "vorn", bool replaces = false) const {
        return said(
            [&] { return ConnectionWords::connected(StatusLineConnection::connect(vorn(name), kNow, replaces)); });
    }
    [[nodiscard]] std::string disconnect(const std::string& name = "vorn") const {
        return said([&] { return ConnectionWords::disconnected(StatusLineConnection::disconnect(vorn(name))); });
    }
    [[nodiscard]] fs::path copy(int number) const {
        return settings.string() + ".vorn-backup." + std::to_string(number);
    }

private:
    /// With the time zone that the dates are in.
    template <typename Action>
    static std::string said(Action action) {
        const test::ScopedEnvironment zone("TZ", "UTC");
        try {
            return action();
        } catch (const IntegrationError& error) {
            return ConnectionWords::problem(error);
        }
    }
};

TEST(StatusLineCommand, hasOneFormThatIsVorns) {
    using Kind = StatusLineCommand::Kind;
    const test::ScopedEnvironment home("HOME", "/h");
    const fs::path relay = "/h/it's/bin/vorn-bridge";
    const struct {
        const char* command;
        Kind kind;
    } cases[] = {
        {R"('/h/it'\''s/bin/vorn-bridge' --chain)", Kind::relay},
        {R"('/h/it'\''s/bin/vorn-bridge' --chain | cut -c1-80)", Kind::filtered},
        {R"('/h/it'\''s/bin/vorn-bridge' --chain|cat)", Kind::filtered},
        {R"('/h/it'\''s/bin/vorn-bridge' --chain; date)", Kind::wrapped},
        {R"('/h/it'\''s/bin/vorn-bridge' --chain )", Kind::wrapped},
        {R"("/h/it's/bin/vorn-bridge" --chain)", Kind::wrapped},
        {R"(nice "$HOME"/it's/bin/vorn-bridge --chain)", Kind::wrapped},
        {"nice ~/it's/bin/vorn-bridge", Kind::wrapped},
        {"'/other/bin/vorn-bridge' --chain", Kind::otherRelay},
        {"'/other/bin/vorn-bridge' --chain | cat", Kind::mention},
        {"'/other/my-vorn-bridge' --chain", Kind::mention},
        {"'vorn-bridge' --chain", Kind::mention},
        {"'/other/vorn-bridge' --chains", Kind::mention},
        {"'/other/vorn-bridge --chain", Kind::mention},
        {"/other/vorn-bridge --chain", Kind::mention},
        {"echo not vorn-bridge", Kind::mention},
        {"vorn", Kind::users},
        {"", Kind::users},
    };
    for (const auto& c : cases) {
        const JSONValue line(JSONValue::Object{{"command", c.command}});
        EXPECT_EQ(classify(&line, relay).kind, c.kind) << c.command;
    }
    const JSONValue text("vorn-bridge");
    EXPECT_EQ(classify(&text, relay).kind, Kind::none);
    EXPECT_EQ(leadingRelay(relayCommand(relay))->relay, relay);
}

TEST(StatusLineConnection, findsTheOwnLineAgainWhenTheDataFolderWasDeleted) {
    const Home home;
    home.put(kMine);
    EXPECT_THAT(home.connect(), AllOf(HasSubstr("Connected."), HasSubstr("then your own command:\n  mine\n")));
    fs::remove_all(home / "vorn");
    EXPECT_THAT(home.disconnect(), HasSubstr("no record"));
    EXPECT_THAT(home.connect(), AllOf(HasSubstr("then your own command, as the backup of 20"),
                                      HasSubstr("settings.json.vorn-backup) has it:\n  mine\n")));
    EXPECT_EQ(home.vorn().downstreamCommand(), "mine");
    EXPECT_THAT(home.connect(), HasSubstr("Already connected; the relay was copied afresh. After every turn Claude "
                                          "Code runs Vorn's relay, then your own command, as the backup"));
    EXPECT_THAT(home.disconnect(), AllOf(HasSubstr("as the backup of 20"), HasSubstr(" had it:\n  mine\n")));
    EXPECT_EQ(home.document(), JSONValue::parse(kMine));
}

TEST(StatusLineConnection, claimsNothingItDoesNotKnow) {
    const Home home;
    home.putCommand("'/gone/bin/vorn-bridge' --chain");
    EXPECT_THAT(home.connect(), HasSubstr("since Vorn knows of no command of your own.\n"));
    EXPECT_THAT(home.connect(),
                HasSubstr("Already connected; the relay was copied afresh. After every turn Claude Code "
                          "runs Vorn's relay, and nothing after it, since Vorn knows of no command"));
    EXPECT_THAT(home.disconnect(), HasSubstr("Vorn does not know whether you had one before"));
    home.put("{}");
    EXPECT_THAT(home.connect(), HasSubstr("since there was no status line command in your settings"));
    EXPECT_EQ(home.disconnect(), "Disconnected. Claude Code has no status line, as before.\n");
    // Nothing to go by but the record, as another version left it.
    EXPECT_THAT(home.connect(), HasSubstr("Connected."));
    fs::remove(home / "vorn/connection.json");
    EXPECT_THAT(home.connect(), HasSubstr("since Vorn knows of no command of your own"));
}

TEST(StatusLineConnection, takesOverWhatAnotherHomeHasRecorded) {
    const Home home;
    home.put(kMine);
    ASSERT_THAT(home.connect("one"), HasSubstr("Connected."));
    EXPECT_EQ(home.connect("two"),
              "Reconnected. After every turn Claude Code runs Vorn's relay, then your own command, "
              "as the record of the other Vorn in " +
                  (home / "one").string() + " has it:\n  mine\n");
    EXPECT_EQ(home.command(), home.relayLine("two"));
    EXPECT_EQ(home.vorn("one").readRecord()->originalStatusLine, home.vorn("two").readRecord()->originalStatusLine);

    // And back again, from a home that had recorded something older.
    home.put(R"({"statusLine": {"command": "newer"}})");
    ASSERT_THAT(home.connect("two"), HasSubstr("newer"));
    EXPECT_THAT(home.connect("one"), HasSubstr("newer"));
    EXPECT_THAT(home.disconnect("two"), HasSubstr("record of the other Vorn"));
    EXPECT_EQ(home.command(), "newer");
    EXPECT_TRUE(home.vorn().backups().holding(*JSONValue::parse(kMine).member("statusLine")));
}

TEST(StatusLineConnection, refusesARelayWhoseRecordCannotBeRead) {
    for (const char* record : {"", "{", R"({"installedAt": "2026-11-22T12:00:00Z",
                                          "originalStatusLine": {"command": "'/x/bin/vorn-bridge' --chain"}})"}) {
        SCOPED_TRACE(record);
        const Home home;
        home.put(kMine);
        ASSERT_THAT(home.connect("one"), HasSubstr("Connected."));
        home.write("one/integration.json", record);
        const std::string before = readAll(home.settings);
        EXPECT_THAT(home.connect("two"), AllOf(HasSubstr((home / "one").string()), HasSubstr("connect --replace"),
                                               HasSubstr("nothing was")));
        EXPECT_THAT(home.disconnect("two"), HasSubstr("nothing was changed"));
        EXPECT_EQ(readAll(home.settings), before);
        EXPECT_FALSE(fs::exists(home / "two"));
        EXPECT_THAT(home.connect("two", true), HasSubstr("settings.json.vorn-backup) has it:\n  mine\n"));
    }
}

TEST(StatusLineConnection, goesOnWhereTheOtherRelayIsGone) {
    const Home home;
    home.put(kMine);
    ASSERT_THAT(home.connect("one"), HasSubstr("Connected."));
    fs::rename(home / "one", home / "moved");  // with its record
    EXPECT_THAT(home.connect("moved"), AllOf(HasSubstr("Reconnected."), HasSubstr("then your own command:\n  mine")));
    EXPECT_EQ(home.command(), home.relayLine("moved"));
    fs::remove_all(home / "moved");
    EXPECT_THAT(home.connect("new"),
                AllOf(HasSubstr("Reconnected."), HasSubstr("as the backup of"), HasSubstr("mine")));
    EXPECT_THAT(home.disconnect("new"), HasSubstr("mine"));
    EXPECT_EQ(home.document(), JSONValue::parse(kMine));
}

TEST(StatusLineConnection, takesNoOlderRecordForAProofThatThereWasNothing) {
    for (const bool connects : {true, false}) {
        const Home home;
        ASSERT_THAT(home.connect("one"), HasSubstr("Connected."));
        home.put(kMine);
        ASSERT_THAT(home.connect("two"), HasSubstr("mine"));
        fs::remove_all(home / "two");
        EXPECT_THAT(connects ? home.connect("one") : home.disconnect("one"),
                    AllOf(HasSubstr("as the backup of"), HasSubstr("mine")));
    }
}

TEST(StatusLineConnection, leavesACommandAloneThatOnlyMentionsTheRelay) {
    const Home home;
    for (const std::string& command :
         {std::string("echo vorn-bridge"), std::string("~/bin/my-vorn-bridge.sh"), "nice " + home.relayLine()}) {
        SCOPED_TRACE(command);
        home.putCommand(command);
        const std::string before = readAll(home.settings);
        EXPECT_THAT(home.connect(), AllOf(HasSubstr("  " + command + "\n"), HasSubstr("connect --replace")));
        EXPECT_EQ(readAll(home.settings), before);
        EXPECT_FALSE(fs::exists(home / "vorn"));
    }
    home.putCommand("echo vorn-bridge");
    EXPECT_THAT(home.disconnect(), HasSubstr("nothing was changed"));
    EXPECT_THAT(home.connect("vorn", true),
                HasSubstr("kept in " + home.settings.string() + ".vorn-backup:\n  echo vorn-bridge\n"));
    EXPECT_EQ(home.command(), home.relayLine());
}

TEST(StatusLineConnection, worksWithAFilterBehindTheRelay) {
    const Home home;
    home.put(kMine);
    ASSERT_THAT(home.connect(), HasSubstr("Connected."));
    home.putCommand(home.relayLine() + " | cut -c1-80");
    const std::string before = readAll(home.settings);
    EXPECT_THAT(home.connect(), AllOf(HasSubstr("Already connected, with"), HasSubstr("mine")));
    EXPECT_EQ(readAll(home.settings), before);
    fs::remove_all(home / "vorn");
    EXPECT_THAT(home.connect(),
                AllOf(HasSubstr("Already connected, with"), HasSubstr("as the backup"), HasSubstr("mine")));
    EXPECT_EQ(readAll(home.settings), before);
    EXPECT_EQ(home.vorn().downstreamCommand(), "mine");
    EXPECT_THAT(home.disconnect(),
                HasSubstr("is kept in " + home.copy(1).string() + ":\n  " + home.relayLine() + " | cut"));
    EXPECT_EQ(readAll(home.copy(1)), before);
    EXPECT_EQ(home.command(), "mine");
}

TEST(StatusLineConnection, keepsWhatTheUserChangedSince) {
    const struct {
        const char* name;
        const char* original;
        std::string_view changed;  ///< "LINE" stands for the relay's command.
        const char* expected;
    } cases[] = {
        {"members", R"({"statusLine": {"command": "m", "padding": 0, "x": 1}})",
         R"({"a": 1, "statusLine": {"type": "command", "command": "LINE", "padding": 2, "refreshInterval": 5}})",
         R"({"a": 1, "statusLine": {"command": "m", "padding": 2, "refreshInterval": 5}})"},
        {"deleted", R"({"statusLine": {"command": "m"}, "b": 1})", R"({"b": 1})", R"({"b": 1})"},
        {"chosen since", R"({"statusLine": {"command": "m"}})", R"({"statusLine": {"command": "later"}})",
         R"({"statusLine": {"command": "later"}})"},
        {"back by hand", R"({"statusLine": {"command": "m"}})", R"({"statusLine": {"command": "m"}})",
         R"({"statusLine": {"command": "m"}})"},
        {"no command", R"({"statusLine": {"command": "m"}})", R"({"statusLine": null})", R"({"statusLine": null})"},
        {"never had one", R"({"b": 1})", R"({"b": 1, "statusLine": {"command": "LINE", "padding": 1}})", R"({"b": 1})"},
        {"was a text", R"({"statusLine": "m"})", R"({"statusLine": {"command": "LINE", "padding": 1}})",
         R"({"statusLine": "m"})"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Home home;
        home.put(c.original);
        ASSERT_THAT(home.connect(), HasSubstr("Connected."));
        std::string changed(c.changed);
        if (const auto at = changed.find("LINE"); at != std::string::npos) {
            changed.replace(at, 4, home.relayLine());
        }
        home.put(changed);
        const std::string said = home.disconnect();
        EXPECT_EQ(home.document(), JSONValue::parse(c.expected));
        EXPECT_FALSE(fs::exists(home / "vorn/integration.json"));
        const JSONValue original = JSONValue::parse(c.original);
        if (const JSONValue* line = original.member("statusLine")) {
            const auto copy = home.vorn().backups().holding(*line);
            ASSERT_TRUE(copy);
            const bool isInSettings = home.document().member("statusLine") != nullptr &&
                                      home.command() == (commandOf(line) == nullptr ? "" : *commandOf(line));
            EXPECT_TRUE(isInSettings || said.find(copy->path.string()) != std::string::npos) << said;
        }
    }
}

TEST(StatusLineConnection, removesASettingsFileThatItMade) {
    const Home home;
    ASSERT_THAT(home.connect(), HasSubstr("Connected."));
    EXPECT_EQ(home.disconnect(),
              "Disconnected. Claude Code has no status line, as before.\nThe settings file, which Vorn "
              "had made, was empty and is removed.\n");
    EXPECT_FALSE(fs::exists(home.settings));
    // Not one that has become the user's, even if it is empty.
    ASSERT_THAT(home.connect(), HasSubstr("Connected."));
    home.put("{}\n");
    ASSERT_THAT(home.connect(), HasSubstr("Connected."));
    EXPECT_THAT(home.disconnect(), Not(HasSubstr("removed")));
    EXPECT_EQ(readAll(home.settings), "{}\n");
}

TEST(SettingsBackups, areMadeOfWhateverVornDidNotLeaveThere) {
    const Home home;
    for (const char* text : {"{}", "{}\n", R"({"statusLine": {"command": "echo vorn-bridge"}})"}) {
        fs::remove(home.settings.string() + ".vorn-backup");
        home.put(text);
        EXPECT_THAT(home.connect("vorn", true), HasSubstr("onnected."));
        EXPECT_EQ(readAll(home.settings.string() + ".vorn-backup"), text);
        EXPECT_FALSE(fs::exists(home.copy(1)));
    }
    // As left: no further copy. Changed, however little: one.
    ASSERT_THAT(home.disconnect(), HasSubstr("Disconnected"));
    ASSERT_THAT(home.connect(), HasSubstr("Connected."));
    EXPECT_FALSE(fs::exists(home.copy(1)));
    home.put(readAll(home.settings) + "\n");
    const std::string changed = readAll(home.settings);
    ASSERT_THAT(home.disconnect(), HasSubstr("Disconnected"));
    EXPECT_EQ(readAll(home.copy(1)), changed);
    // Not a user's doing, but the copies are: what the record holds is in one of them.
    home.put(kMine);
    ASSERT_THAT(home.connect(), HasSubstr("Connected."));
    for (const auto& backup : home.vorn().backups().all()) {
        fs::remove(backup.path);
    }
    ASSERT_THAT(home.connect(), HasSubstr("Already"));
    EXPECT_EQ(home.vorn().backups().all().size(), 1U);
    EXPECT_TRUE(home.vorn().backups().holding(*JSONValue::parse(kMine).member("statusLine")));
}

TEST(SettingsBackups, staysTheNewestFiveAndTheOnlyOneOfAnyStatusLine) {
    const Home home;
    home.put(kMine);
    const SettingsBackups backups = home.vorn().backups();
    const auto keep = [&](const std::string& statusLine, int ballast) {
        backups.keep(R"({"b": )" + std::to_string(ballast) +
                     (statusLine.empty() ? "" : R"(, "statusLine": )" + statusLine) + "}");
    };
    keep(R"({"command": "first"})", 0);
    keep(R"({"command": "rare"})", 1);
    keep("", 2);
    keep(R"({"command": "first"})", 3);
    for (int i = 4; i < 14; ++i) {
        keep(i % 2 == 0 ? R"({"command": "even"})" : R"({"command": "odd"})", i);
    }
    keep(R"({"command": "odd"})", 13);  // the newest says the same
    std::vector<std::string> names;
    for (const auto& backup : backups.all()) {
        names.push_back(backup.path.filename().string().substr(std::string("settings.json.vorn-backup").size()));
    }
    EXPECT_EQ(names, (std::vector<std::string>{"", ".1", ".9", ".10", ".11", ".12", ".13"}));
    home.write("claude/settings.json.vorn-backup.14x", "mine");
    EXPECT_EQ(backups.all().size(), names.size());
}

TEST(StatusLineConnection, leavesAStrangersHomeAloneAsRoot) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root";
    }
    const Home home;
    home.put(kMine);
    constexpr uid_t kNobody = 65534;
    ASSERT_EQ(::chown((home / "claude").c_str(), kNobody, kNobody), 0);
    EXPECT_THAT(home.connect(),
                AllOf(HasSubstr("You are root"), HasSubstr("nobody"), HasSubstr("nothing was changed")));
    EXPECT_THAT(home.disconnect(), HasSubstr("You are root"));
    EXPECT_EQ(readAll(home.settings), kMine);
    ASSERT_EQ(::chown((home / "claude").c_str(), 0, 0), 0);
    EXPECT_THAT(home.connect(), HasSubstr("Connected."));
    // What an earlier root left in the home is still in that home.
    ASSERT_EQ(::chown(home.path().c_str(), kNobody, kNobody), 0);
    const test::ScopedEnvironment variable("HOME", home.path().c_str());
    EXPECT_THAT(home.connect(), HasSubstr("You are root"));
}

TEST(ConnectionState, saysWhyAConnectedRelayIsNotHeard) {
    const std::string on = R"({"disableAllHooks": true})";
    const std::string line = R"({"statusLine": {"command": "theirs"}})";
    const struct {
        const char* name;
        std::function<void(const Home&)> change;
        std::optional<Unheard::Reason> reason;
        const char* file = "";
    } cases[] = {
        {"nothing", [](const Home&) {}, {}},
        {"no relay", [](const Home& home) { fs::remove(home / "vorn/bin/vorn-bridge"); }, Unheard::Reason::relayMissing,
         "vorn/bin/vorn-bridge"},
        {"not executable", [](const Home& home) { ::chmod((home / "vorn/bin/vorn-bridge").c_str(), 0644); },
         Unheard::Reason::relayCannotRun, "vorn/bin/vorn-bridge"},
        {"hooks off",
         [](const Home& home) {
             auto settings = *home.document().object();
             settings["disableAllHooks"] = true;
             home.put(JSONValue(settings).dump());
         },
         Unheard::Reason::hooksDisabled, "claude/settings.json"},
        {"hooks off in the project", [&](const Home& home) { home.write("work/.claude/settings.json", on); },
         Unheard::Reason::hooksDisabled, "work/.claude/settings.json"},
        {"on again locally",
         [&](const Home& home) {
             home.write("work/.claude/settings.json", on);
             home.write("work/.claude/settings.local.json", R"({"disableAllHooks": false})");
         },
         {}},
        {"project's own", [&](const Home& home) { home.write("work/.claude/settings.local.json", line); },
         Unheard::Reason::overridden, "work/.claude/settings.local.json"},
        {"managed",
         [&](const Home& home) {
             home.write("managed.json", line);
             home.write("work/.claude/settings.json", R"({"statusLine": {"command": ")" + home.relayLine() + R"("}})");
         },
         Unheard::Reason::overridden, "managed.json"},
        {"Vorn's in the project as well",
         [](const Home& home) {
             home.write("work/.claude/settings.json", R"({"statusLine": {"command": ")" + home.relayLine() + R"("}})");
         },
         {}},
        {"damaged ones", [](const Home& home) { home.write("work/.claude/settings.json", "{"); }, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Home home;
        home.put(kMine);
        ASSERT_THAT(home.connect(), HasSubstr("Connected."));
        c.change(home);
        fs::create_directories(home / "work/deeper");
        StrongerSettings stronger = strongerSettings(home / "work/deeper");
        stronger.managed = {home / "managed.json"};
        const ConnectionState state = connectionState(home.vorn(), stronger);
        ASSERT_EQ(state.unheard.has_value(), c.reason.has_value());
        EXPECT_EQ(state.kind, c.reason ? ConnectionState::Kind::unheard : ConnectionState::Kind::connected);
        if (c.reason) {
            EXPECT_EQ(state.unheard->reason, *c.reason);
            EXPECT_THAT(ConnectionWords::reason(*state.unheard), HasSubstr((home / c.file).string()));
        }
    }
    const Home home;
    home.putCommand("nice " + home.relayLine());
    EXPECT_EQ(connectionState(home.vorn(), {}).kind, ConnectionState::Kind::othersCommand);
    home.putCommand(home.relayLine("other"));
    EXPECT_EQ(connectionState(home.vorn(), {}).kind, ConnectionState::Kind::needsReconnecting);
}

TEST(ConnectionState, isSilentOnceRepliesStretchOverAnHourWithoutAWord) {
    EXPECT_EQ(silentSince(kNow, {}), std::nullopt);
    EXPECT_EQ(silentSince(kNow, {kNow - 3h, kNow}), std::nullopt);
    EXPECT_EQ(silentSince(kNow, {kNow - 3h, kNow + 2h}), std::nullopt) << "a session that has only just begun";
    EXPECT_EQ(silentSince(kNow, {kNow + 5min, kNow + 64min}), std::nullopt);
    EXPECT_EQ(silentSince(kNow, {kNow - 3h, kNow + 5min, kNow + 65min}), kNow + 5min);
}

}  // namespace
}  // namespace vorn
