#include <QAccessible>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <cstdlib>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/model/integrations.hpp"
#include "core/sources/probe_error.hpp"
#include "platform/desktop_appearance.hpp"
#include "platform/hot_key.hpp"
#include "platform/login_item.hpp"
#include "platform/notification_center.hpp"
#include "platform/panel_brightness.hpp"
#include "tests/support/view_states.hpp"
#include "ui/views/claude_finder.hpp"
#include "ui/views/settings_pages.hpp"
#include "ui/views/settings_picture.hpp"
#include "ui/views/settings_window.hpp"
#include "ui/views/snapshot.hpp"
#include "ui/views/view_engine.hpp"
#include "ui/views/view_picture.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using Page = SettingsWindow::Page;
using test::ViewState;

constexpr std::array kPages{Page::general, Page::menuBar, Page::notifications, Page::claudeCode};

/// Everything that Qt or QML complained about.
std::vector<std::string> warnings;  // NOLINT: message handlers know nothing but what is global
void takeWarning(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && type != QtInfoMsg && !text.startsWith("This plugin does not support")) {
        warnings.push_back(text.toStdString());
    }
}

class FakeLoginItem : public LoginItem {
public:
    [[nodiscard]] bool isEnabled() const override { return m_isOn; }
    void setEnabled(bool on) override {
        if (!refusal.empty()) {
            throw std::runtime_error(refusal);
        }
        m_isOn = on;
    }
    std::string refusal;

private:
    bool m_isOn = false;
};

class FakeHotKey : public HotKey {
public:
    [[nodiscard]] bool isRegistered() const override { return trouble.isEmpty(); }
    [[nodiscard]] QString problem() const override { return trouble; }
    [[nodiscard]] QString keys() const override { return "Ctrl+Alt+P"; }
    QString trouble;
};

class FakeNotices : public NotificationCenter {
public:
    void requestAuthorization(std::function<void(bool)>) override {}
    void post(const Notice& notice) override { posted.push_back(notice.title.toStdString()); }
    [[nodiscard]] QString problem() const override { return trouble; }
    QString trouble;
    std::vector<std::string> posted;
};

/// All that the settings show and change, in a home directory of its own.
struct World {
    test::TemporaryDirectory home;
    test::ScopedEnvironment homeVariable{"HOME", home.path().c_str()};
    test::ScopedEnvironment configuration{"CLAUDE_CONFIG_DIR", ""};
    test::ScopedEnvironment data{"XDG_DATA_HOME", (home / "data").c_str()};
    ViewState state;
    FakeLoginItem loginItem;
    Integrations integrations{StatusLineIntegration({.settings = home.path() / ".claude/settings.json",
                                                     .record = home.path() / "record.json",
                                                     .bridge = home.path() / "bin/vorn-bridge"}),
                              &loginItem};
    FakeHotKey hotKey;
    FakeNotices notices;
    DesktopAppearance appearance;
    PanelBrightness panel{appearance};
    QRect place;

    SettingsWindow::Deps deps() {
        return {.preferences = *state.preferences,
                .integrations = integrations,
                .model = *state.model,
                .notifications = &notices,
                .hotKey = hotKey,
                .appearance = appearance,
                .panel = panel,
                .place = {.load = [this] { return place; },
                          .save =
                              [this](const QRect& rect) {
                                  place = rect;
                              }}};
    }
    /// What the store holds.
    [[nodiscard]] std::unique_ptr<Preferences> stored() const {
        return std::make_unique<Preferences>(std::make_unique<QSettings>(
            QString::fromStdString(state.directory / "settings.ini"), QSettings::IniFormat));
    }
    [[nodiscard]] QString makeClaude(const std::string& script) const {
        return QString::fromStdString(home.executable("my/claude", script));
    }
    void writeClaudeSettings(const std::string& json) { home.write(".claude/settings.json", json); }
};

/// All pages on one sheet, for people to look at, where the environment names a directory.
void keepPictures(const std::vector<QImage>& pages, const std::string& name) {
    const char* const directory = std::getenv("VORN_VIEW_PICTURES");
    if (directory == nullptr || pages.front().isNull()) {
        return;
    }
    const QSize size = pages.front().size();
    QImage sheet(size * 2, QImage::Format_RGB32);
    QPainter painter(&sheet);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const auto at = static_cast<int>(i);
        painter.drawImage(QRect(QPoint(at % 2 * size.width(), at / 2 * size.height()), size), pages[i]);
    }
    sheet.save(QDir(directory).filePath(QString::fromStdString("settings-" + name + ".png")));
}

void expectPictures(World& world, const std::string& name, double pixelRatio = 2) {
    ClaudeFinder finder;
    finder.find(world.state.preferences->claudePathOverride());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !finder.finding().isSearching; }, 20'000));
    ViewEngine engine(world.appearance);
    const auto hold = engine.hold();
    std::vector<QImage> pictures;
    for (const Page page : kPages) {
        SettingsPages pages(world.deps(), finder);
        pictures.push_back(pictureOf(*hold, {.view = QUrl("qrc:/qt/qml/Vorn/SettingsView.qml"),
                                             .properties = pages.properties(page),
                                             .pixelRatio = pixelRatio}));
        EXPECT_GT(pictures.back().width(), 500);
    }
    keepPictures(pictures, name);
    EXPECT_THAT(warnings, testing::IsEmpty()) << name;
    warnings.clear();
}

TEST(SettingsView, ShowsEveryStateWithoutAWarning) {
    const struct {
        const char* name;
        DesktopAppearance::Look look;
        std::function<void(World&)> enter;
    } cases[] = {
        {"light",
         {},
         [](World& world) {
             world.state.model->startDemo(demo::makeDemo(demo::Scenario::atRisk, world.state.now));
         }},
        {"dark",
         {.isDark = true},
         [](World& world) {
             world.state.model->startDemo(demo::makeDemo(demo::Scenario::atRisk, world.state.now));
             world.state.preferences->setGlyphStyle(GlyphStyle::steer);
         }},
        {"contrast",
         {.highContrast = true, .reducedMotion = true},
         [](World&) {
         }},
        {"nothing",
         {},
         [](World& world) {
             world.writeClaudeSettings(
                 "{\"statusLine\": {\"type\": \"command\", \"command\": \"~/prompt.sh --short\"}}");
             world.integrations.refresh();
         }},
        {"trouble",
         {},
         [](World& world) {
             world.state.directory.write("settings.ini", "[General\nrefreshMinutes=7\n\x01");
             world.state.preferences->setRefreshMinutes(7);
             world.state.preferences->setClaudePathOverride("/no/such/directory/of/any/kind/that/could/hold/claude");
             world.state.probe(std::string("claude /usage failed: error: unknown option '--safe-mode'\nmore"));
             world.loginItem.refusal = "Couldn't add the login item: the autostart folder is read-only.";
             world.integrations.setLaunchAtLogin(true);
             world.writeClaudeSettings("{\"statusLine\": }");
             world.integrations.refresh();
             world.hotKey.trouble = "Another program uses Ctrl+Alt+P.";
             world.notices.trouble =
                 "Notifications cannot be shown: no notification service is running on this desktop.";
         }},
        {"trouble-dark",
         {.isDark = true},
         [](World& world) {
             world.state.preferences->setClaudePathOverride(world.makeClaude("echo '2.1.330 (Claude Code)'"));
             world.state.probe(UsageCommandParser::Result{
                 .windows = {test::reading(WindowKind::session(), 38, std::chrono::hours(2)),
                             test::reading(WindowKind::week(), 41, std::chrono::hours(80))}});
             world.writeClaudeSettings(
                 "{\"statusLine\": {\"type\": \"command\", \"command\": \"/old/place/vorn-bridge\"}}");
             world.integrations.refresh();
             world.integrations.connectStatusLine();
         }},
    };
    for (const auto& [name, look, enter] : cases) {
        World world;
        world.appearance.setLook(look);
        enter(world);
        expectPictures(world, name);
        expectPictures(world, std::string(name) + "-1x", 1);
    }
}

}  // namespace
}  // namespace vorn

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (const char* const font = std::getenv("VORN_VIEW_FONT")) {
        QGuiApplication::setFont(QFont(font, 10));
    }
    vorn::ViewEngine::useSoftwareRendering();
    qInstallMessageHandler(&vorn::takeWarning);
    return RUN_ALL_TESTS();
}
