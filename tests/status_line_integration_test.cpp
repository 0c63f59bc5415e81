#include "core/status_line/status_line_integration.hpp"

#include <atomic>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/status_line/bridge_installer.hpp"
#include "core/support/file.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {

void PrintTo(const JSONValue& value, std::ostream* out) {
    *out << value.dump();
}

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::readAll;
using test::TemporaryDirectory;
using testing::HasSubstr;
using testing::Optional;
using Kind = StatusLineIntegration::State::Kind;

const Instant kNow = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + 12h;
constexpr const char* kUsers =
    R"({"statusLine": {"type": "static", "command": "~/bin/line.sh", "padding": 0, "refreshInterval": 1.50}})";

struct Places : TemporaryDirectory {
    fs::path settings = path() / "claude" / "settings.json";
    fs::path record = path() / "vorn" / "integration.json";
    StatusLineIntegration integration{
        {.settings = settings, .record = record, .bridge = path() / "vorn/bin/vorn-bridge"}};
    std::string command = "'" + path().string() + "/vorn/bin/vorn-bridge' --chain";

    [[nodiscard]] JSONValue document() const { return JSONValue::parse(readAll(settings)); }
    void put(std::string_view text) const { TemporaryDirectory::write("claude/settings.json", text); }
    [[nodiscard]] StatusLineIntegration withBridge(const fs::path& bridge) const {
        return StatusLineIntegration({.settings = settings, .record = record, .bridge = bridge});
    }
};

template <typename Action>
std::string failureOf(Action action) {
    try {
        action();
        return "";
    } catch (const IntegrationError& error) {
        return error.what();
    }
}

TEST(StatusLineIntegration, givesBackWhateverTheStatusLineWas) {
    const struct {
        const char* settings;
        std::optional<std::string> downstream;
    } cases[] = {
        {kUsers, "~/bin/line.sh"},
        {"{}", {}},
        {"", {}},
        {R"({"statusLine": {}})", {}},
        {R"({"statusLine": {"command": ""}})", ""},
        {R"({"statusLine": {"command": ["a"]}})", {}},
        {R"({"statusLine": null})", {}},
        {R"({"statusLine": false})", {}},
        {R"({"statusLine": 9007199254740993})", {}},
        {R"({"statusLine": "~/line.sh"})", {}},
        {R"({"statusLine": [{"command": "x"}]})", {}},
        {R"({"n": null, "t": true, "i": 12345678901234567890, "d": 1e-7, "s": "a/é\u0000", "a": [[], {}, [1]],
             "o": {"statusLine": {"x": null}}, "": 0})",
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings);
        const Places places;
        places.put(c.settings);
        const JSONValue before = *c.settings == '\0' ? JSONValue(JSONValue::Object{}) : JSONValue::parse(c.settings);
        EXPECT_EQ(places.integration.plannedDownstreamCommand(), c.downstream);
        const auto planned = places.integration.plannedInstall();
        places.integration.install(kNow);
        EXPECT_EQ(planned, (StatusLineIntegration::Change{.before = c.settings, .after = readAll(places.settings)}));
        EXPECT_EQ(places.integration.state(), StatusLineIntegration::State{.kind = Kind::installed});
        EXPECT_EQ(places.integration.downstreamCommand(), c.downstream);
        EXPECT_EQ(readAll(places.integration.backup()), c.settings);

        JSONValue::Object expected = *before.object();
        const JSONValue* statusLine = before.member("statusLine");
        JSONValue::Object connected = statusLine && statusLine->object() ? *statusLine->object() : JSONValue::Object{};
        connected["type"] = "command";
        connected["command"] = places.command;
        expected["statusLine"] = connected;
        EXPECT_EQ(places.document(), JSONValue(expected));

        places.integration.uninstall();
        EXPECT_EQ(places.document(), before);
        EXPECT_FALSE(fs::exists(places.record));
        EXPECT_EQ(places.integration.state().kind, Kind::notInstalled);
    }
}

TEST(StatusLineIntegration, needsNoSettingsFileAndBacksUpNoneOfItsOwn) {
    const Places places;
    EXPECT_EQ(places.integration.state().kind, Kind::notInstalled);
    places.integration.install(kNow + 0.7s);
    EXPECT_EQ(places.integration.readSettings().size(), 1U);
    EXPECT_EQ(places.integration.readRecord(), (StatusLineIntegration::Record{.installedAt = kNow}));
    places.integration.install(kNow);
    places.integration.uninstall();
    EXPECT_EQ(readAll(places.settings), "{}\n");
    places.integration.install(kNow);
    EXPECT_FALSE(fs::exists(places.integration.backup()));
    // From here on it is the user's.
    places.integration.uninstall();
    places.put(kUsers);
    places.integration.install(kNow);
    places.put(R"({"statusLine": {"command": "other"}})");
    places.integration.install(kNow);
    EXPECT_EQ(readAll(places.integration.backup()), kUsers) << "made once";
}

TEST(StatusLineIntegration, neverTakesARelayForTheUsersOwn) {
    const Places places;
    places.put(kUsers);
    places.integration.install(kNow);
    const std::string record = readAll(places.record);
    const std::string settings = readAll(places.settings);
    places.integration.install(kNow + 1h);
    EXPECT_EQ(readAll(places.record), record);
    EXPECT_EQ(readAll(places.settings), settings);

    // Another version elsewhere, with everything in its path that a shell would stumble over.
    const auto moved = places.withBridge("/o'ne two/$HOME/`id`/\"q\"/\n/ü\\/bin/vorn-bridge");
    EXPECT_EQ(moved.state(), (StatusLineIntegration::State{.kind = Kind::stale, .command = places.command}));
    moved.install(kNow + 1h);
    EXPECT_EQ(moved.state().kind, Kind::installed);
    EXPECT_EQ(*places.document().member("statusLine")->member("command"),
              JSONValue("'/o'\\''ne two/$HOME/`id`/\"q\"/\n/ü\\/bin/vorn-bridge' --chain"));
    EXPECT_EQ(readAll(places.record), record);
    places.integration.uninstall();
    EXPECT_EQ(places.document(), JSONValue::parse(kUsers));

    for (const char* damaged :
         {"", "{", R"({"originalStatusLine": {"command": "x"}})", R"({"installedAt": 5})", "[]"}) {
        places.put(R"({"statusLine": {"command": "/gone/vorn-bridge --chain"}})");
        places.TemporaryDirectory::write("vorn/integration.json", damaged);
        EXPECT_EQ(failureOf([&] { places.integration.uninstall(); }),
                  "Vorn has no record of your own status line, so nothing was changed.");
        EXPECT_EQ(places.integration.state().kind, Kind::stale);
        places.integration.install(kNow);
        EXPECT_EQ(places.integration.readRecord(), (StatusLineIntegration::Record{.installedAt = kNow})) << damaged;
    }
    EXPECT_FALSE(fs::exists(places.integration.backup()) &&
                 readAll(places.integration.backup()).find("vorn-bridge") != std::string::npos);
    EXPECT_THAT(failureOf([&] { places.withBridge("/\xFF/vorn-bridge").install(kNow); }), HasSubstr("not valid UTF-8"));
}

TEST(StatusLineIntegration, changesNothingItCannotRead) {
    const struct {
        std::string_view settings;
        const char* reason;
    } cases[] = {
        {"[]", "top level isn't an object"},
        {"null", "top level isn't an object"},
        {"  \n", "line 2, column 1: the document ends too early"},
        {R"({"a": 1, // mine
             "b": 2})",
         "line 1, column 10: a comment is not allowed"},
        {R"({"a": 1, "a": 2})", "line 1, column 10: this key is there twice"},
    };
    for (const auto& c : cases) {
        const Places places;
        places.put(c.settings);
        const std::string expected = std::string("Couldn't read Claude Code settings: ") + c.reason;
        const auto& integration = places.integration;
        EXPECT_EQ(failureOf([&] { (void)integration.state(); }), expected);
        EXPECT_EQ(failureOf([&] { integration.install(kNow); }), expected);
        EXPECT_EQ(failureOf([&] { integration.uninstall(); }), expected);
        EXPECT_EQ(failureOf([&] { integration.writeSettings({}); }), expected);
        EXPECT_EQ(readAll(places.settings), c.settings);
        EXPECT_FALSE(fs::exists(places.record) || fs::exists(integration.backup()));
    }
    const std::string deep = std::string(250, '[') + std::string(250, ']');
    std::string wide = R"({"a": [)" + deep;
    for (int i = 0; i < 600; ++i) {
        wide += "," + deep;
    }
    const std::string large(std::size_t{1} << 20U, 'x');
    const Places places;
    for (const auto& [settings, reason] :
         {std::pair<std::string, std::string>{R"({"statusLine": {"command": "mine", "padding": ")" + large + R"("}})",
                                              "the status line holds what Vorn's relay cannot pass on"},
          {wide + "]}", "written out anew it would be too large to be read again"}}) {
        places.put(settings);
        EXPECT_EQ(failureOf([&] { places.integration.install(kNow); }),
                  "Couldn't read Claude Code settings: " + reason);
        EXPECT_EQ(readAll(places.settings), settings);
        EXPECT_FALSE(fs::exists(places.record));
    }
    fs::remove(places.settings);
    fs::create_directories(places.settings);
    EXPECT_EQ(failureOf([&] { places.integration.install(kNow); }),
              "Couldn't read Claude Code settings: Is a directory");
}

TEST(StatusLineIntegration, keepsLinksModeAndOwner) {
    const Places places;
    places.put("{}");
    const fs::path target = places.TemporaryDirectory::write("dotfiles/claude.json", kUsers);
    fs::remove(places.settings);
    fs::create_symlink("../dotfiles/claude.json", places.settings);
    ::chmod(target.c_str(), 0640);
    const bool isRoot = ::geteuid() == 0;
    if (isRoot) {
        ASSERT_EQ(::chown(target.c_str(), 12345, 54321), 0);
    }
    places.integration.install(kNow);
    EXPECT_TRUE(fs::is_symlink(places.settings));
    for (const fs::path& file : {target, places.integration.backup()}) {
        struct stat status {};
        ASSERT_EQ(::lstat(file.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode, S_IFREG | 0640U) << file;
        EXPECT_TRUE(!isRoot || (status.st_uid == 12345 && status.st_gid == 54321)) << file;
    }
    places.integration.uninstall();
    EXPECT_EQ(JSONValue::parse(readAll(target)), JSONValue::parse(kUsers));
}

/// Somebody else replaces the settings right after they were read; true when that came in time to matter.
bool installAgainstAnotherWriter() {
    const Places places;
    const std::string ballast(std::size_t{8} << 20U, 'x');  // makes the time between reading and writing long
    places.put(R"({"ballast": ")" + ballast + R"(", "statusLine": {"command": "old"}})");
    const fs::path other = places.TemporaryDirectory::write(
        "other.json", R"({"model": "opus", "statusLine": {"command": "new", "padding": 2}})");
    std::atomic<bool> wasInTime = false;
    std::thread writer([&] {
        while (!fs::exists(places.integration.backup())) {
        }
        wasInTime = fs::file_size(places.settings) < ballast.size() + 100;
        fs::rename(other, places.settings);
    });
    places.integration.install(kNow);
    writer.join();
    if (!wasInTime || places.integration.state().kind != Kind::installed) {
        return false;
    }
    EXPECT_EQ(*places.document().member("model"), JSONValue("opus"));
    EXPECT_EQ(*places.document().member("statusLine")->member("padding"), JSONValue(2));
    EXPECT_THAT(places.integration.downstreamCommand(), Optional(std::string("new")));
    return true;
}

TEST(StatusLineIntegration, appliesItselfAgainWhenTheSettingsChangedMeanwhile) {
    constexpr int kTries = 20;  // on a busy machine the other writer may come too late
    int i = 0;
    while (i < kTries && !installAgainstAnotherWriter()) {
        ++i;
    }
    EXPECT_LT(i, kTries);
}

TEST(BridgeInstaller, findsTheRelayOfTheRunningProgram) {
    const TemporaryDirectory dir;
    const fs::path program = dir / "App/bin/vorn";
    dir.write("App/Helpers/vorn-bridge", "cannot be run");
    EXPECT_EQ(failureOf([&] { (void)BridgeInstaller::find(program); }), "vorn-bridge is missing from the app bundle.");
    for (const char* better : {"App/libexec/vorn/vorn-bridge", "App/bin/vorn-bridge", "App/Helpers/vorn-bridge"}) {
        const fs::path relay = dir.executable(better, "exit 0");
        EXPECT_EQ(BridgeInstaller::find(program), relay);
    }
}

TEST(BridgeInstaller, replacesACopyWithoutTouchingTheOldOne) {
    const TemporaryDirectory dir;
    const fs::path relay = dir.executable("vorn-bridge", "exit 0");
    const fs::path copy = dir / "new/bin/vorn-bridge";
    BridgeInstaller::install(relay, copy);
    EXPECT_EQ(readAll(copy), readAll(relay));
    EXPECT_EQ(::access(copy.c_str(), X_OK), 0);

    // A developer's link must not lead to the build being overwritten.
    const fs::path precious = dir.write("precious", "mine");
    fs::remove(copy);
    fs::create_symlink(precious, copy);
    BridgeInstaller::install(relay, copy);
    EXPECT_FALSE(fs::is_symlink(copy));
    EXPECT_EQ(readAll(precious), "mine");

    EXPECT_THAT(failureOf([&] { BridgeInstaller::install(relay, precious / "vorn-bridge"); }),
                HasSubstr("Couldn't copy vorn-bridge to"));
    EXPECT_THAT(failureOf([&] { BridgeInstaller::install(dir / "gone", copy); }), HasSubstr("No such file"));
    EXPECT_EQ(readAll(copy), readAll(relay));
}

}  // namespace
}  // namespace vorn
