#include "model/integrations.hpp"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/support/executable_path.hpp"
#include "core/support/file.hpp"
#include "platform/login_item.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using test::readAll;
using testing::HasSubstr;
using testing::StartsWith;
using Kind = StatusLineIntegration::State::Kind;

class FakeLoginItem : public LoginItem {
public:
    [[nodiscard]] bool isEnabled() const override { return enabled; }
    void setEnabled(bool on) override {
        if (!error.empty()) {
            throw std::runtime_error(error);
        }
        enabled = on;
    }
    bool enabled = false;
    std::string error;
};

class IntegrationsTest : public testing::Test {
protected:
    IntegrationsTest() {
        QObject::connect(&m_integrations, &Integrations::changed, [this] { ++m_changes; });
    }

    /// As an update of the application would bring it, beside this program.
    void shipRelay(std::string_view script) const {
        replaceFile({.path = m_relay, .content = "#!/bin/sh\n" + std::string(script), .mode = 0755});
    }
    [[nodiscard]] std::string error() const { return m_integrations.statusLineError().toStdString(); }

    const test::TemporaryDirectory m_dir;
    const fs::path m_relay = runningExecutable().parent_path() / "vorn-bridge";
    const fs::path m_settings = m_dir.write("settings.json", R"({"statusLine": {"command": "mine"}})");
    const fs::path m_bridge = m_dir / "vorn/bin/vorn-bridge";
    FakeLoginItem m_loginItem;
    Integrations m_integrations{
        StatusLineIntegration({.settings = m_settings, .record = m_dir / "vorn/integration.json", .bridge = m_bridge}),
        &m_loginItem};
    int m_changes = 0;
};

// One case, since there is one place beside this program.
TEST_F(IntegrationsTest, ConnectsWithTheRelayThatCameWithTheProgram) {
    const std::string before = readAll(m_settings);
    fs::remove(m_relay);
    m_integrations.refresh();
    EXPECT_EQ(m_changes, 0);
    m_integrations.connectStatusLine();
    EXPECT_EQ(error(), "vorn-bridge is missing from the app bundle.");
    EXPECT_EQ(m_changes, 1);
    m_integrations.refresh();  // reading went well, connecting did not
    EXPECT_EQ(error(), "vorn-bridge is missing from the app bundle.");
    EXPECT_EQ(m_changes, 1);
    EXPECT_EQ(readAll(m_settings), before);

    for (const char* version : {"one", "two"}) {
        shipRelay(version);
        m_integrations.connectStatusLine();
        EXPECT_EQ(error(), "");
        EXPECT_THAT(readAll(m_bridge), HasSubstr(version));
        EXPECT_EQ(m_integrations.statusLine().kind, Kind::installed);
        EXPECT_EQ(m_integrations.downstreamCommand(), "mine");
    }
    EXPECT_EQ(m_changes, 2);  // the second time nothing that is shown changed

    m_dir.write("settings.json", "{");
    m_integrations.refresh();
    EXPECT_THAT(error(), StartsWith("Couldn't read Claude Code settings: "));
    EXPECT_EQ(m_integrations.statusLine().kind, Kind::installed);
    fs::rename(m_dir / "vorn/integration.json", m_dir / "away");
    m_integrations.refresh();
    EXPECT_FALSE(m_integrations.hasDownstreamCommand());
    fs::rename(m_dir / "away", m_dir / "vorn/integration.json");
    m_dir.write("settings.json", R"({"statusLine": {"command": "'/old/vorn-bridge' --chain"}})");
    m_integrations.refresh();
    EXPECT_EQ(error(), "");
    EXPECT_EQ(m_integrations.statusLine().kind, Kind::stale);

    m_integrations.disconnectStatusLine();
    EXPECT_EQ(error(), "");
    EXPECT_EQ(m_integrations.statusLine().kind, Kind::notInstalled);
    EXPECT_FALSE(m_integrations.hasDownstreamCommand());
    EXPECT_THAT(readAll(m_settings), HasSubstr(R"("mine")"));
    m_integrations.disconnectStatusLine();
    EXPECT_NE(error(), "");  // there is no record of anything to put back
    fs::remove(m_relay);
}

TEST_F(IntegrationsTest, ShowsTheRealLoginItemWhateverWasAsked) {
    m_integrations.setLaunchAtLogin(true);
    EXPECT_TRUE(m_integrations.launchAtLogin());
    m_loginItem.error = "The autostart folder is read-only.";
    m_integrations.setLaunchAtLogin(false);
    EXPECT_TRUE(m_integrations.launchAtLogin());
    EXPECT_EQ(m_integrations.loginItemError(), "The autostart folder is read-only.");
    m_loginItem.enabled = false;  // behind our back
    m_integrations.refresh();
    EXPECT_FALSE(m_integrations.launchAtLogin());
    EXPECT_NE(m_integrations.loginItemError(), "");
    m_loginItem.error.clear();
    m_integrations.setLaunchAtLogin(false);
    EXPECT_EQ(m_integrations.loginItemError(), "");

    Integrations without(m_integrations.integration(), nullptr);
    without.setLaunchAtLogin(true);
    EXPECT_FALSE(without.canLaunchAtLogin() || without.launchAtLogin());
    EXPECT_EQ(without.loginItemError(), "");
}

TEST_F(IntegrationsTest, ChangesNothingInADemonstration) {
    const std::string before = readAll(m_settings);
    m_integrations.setReadOnly("Not in a demonstration.");
    m_integrations.connectStatusLine();
    m_integrations.setLaunchAtLogin(true);
    EXPECT_EQ(error(), "Not in a demonstration.");
    EXPECT_EQ(m_integrations.loginItemError(), "Not in a demonstration.");
    m_integrations.disconnectStatusLine();
    EXPECT_FALSE(m_loginItem.enabled || fs::exists(m_dir / "vorn"));
    EXPECT_EQ(readAll(m_settings), before);
}

}  // namespace
}  // namespace vorn
