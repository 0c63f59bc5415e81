#include <QAccessible>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>
#include <algorithm>
#include <tuple>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/snapshot.hpp"
#include "core/support/executable_path.hpp"
#include "core/support/file.hpp"
#include "model/integrations.hpp"
#include "platform/desktop_appearance.hpp"
#include "platform/hot_key.hpp"
#include "platform/login_item.hpp"
#include "platform/notification_center.hpp"
#include "platform/panel_brightness.hpp"
#include "tests/support/qt_warnings.hpp"
#include "tests/support/shown_window.hpp"
#include "tests/support/view_looks.hpp"
#include "tests/support/view_states.hpp"
#include "ui/settings/claude_finder.hpp"
#include "ui/settings/settings_pages.hpp"
#include "ui/settings/settings_picture.hpp"
#include "ui/settings/settings_window.hpp"
#include "ui/window/app_requests.hpp"
#include "ui/window/view_engine.hpp"
#include "ui/window/view_picture.hpp"

namespace vorn {
namespace {

using Page = SettingsWindow::Page;
using test::ViewState;
using test::Warnings;
using testing::HasSubstr;

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

/// All that the settings show and change, in a home directory of its own. `hasParts`: a login item and notices.
struct World {
    explicit World(bool hasParts = true) : has(hasParts) {}

    bool has;
    test::TemporaryDirectory home;
    test::ScopedEnvironment homeVariable{"HOME", home.path().c_str()};
    test::ScopedEnvironment configuration{"CLAUDE_CONFIG_DIR", ""};
    test::ScopedEnvironment data{"XDG_DATA_HOME", (home / "data").c_str()};
    ViewState state;
    FakeLoginItem loginItem;
    Integrations integrations{StatusLineIntegration({.settings = home.path() / ".claude/settings.json",
                                                     .record = home.path() / "record.json",
                                                     .bridge = home.path() / "bin/vorn-bridge"}),
                              has ? &loginItem : nullptr};
    FakeHotKey hotKey;
    FakeNotices notices;
    DesktopAppearance appearance;
    PanelBrightness panel{appearance};
    WindowPlace place;
    AppRequests requests;

    SettingsWindow::Deps deps() {
        return {.preferences = state.preferences,
                .integrations = integrations,
                .model = *state.model,
                .requests = requests,
                .notifications = has ? &notices : nullptr,
                .hotKey = hotKey,
                .appearance = appearance,
                .panel = panel,
                .place = {.load = [this] { return place; },
                          .save =
                              [this](const WindowPlace& last) {
                                  place = last;
                              }}};
    }
    /// What the store holds.
    [[nodiscard]] std::unique_ptr<Preferences> stored() const {
        return std::make_unique<Preferences>(std::make_unique<QSettings>(
            QString::fromStdString(state.directory / "preferences.ini"), QSettings::IniFormat));
    }
    [[nodiscard]] QString makeClaude(const std::string& script) const {
        return QString::fromStdString(home.executable("my/claude", script));
    }
    void writeClaudeSettings(const std::string& json) { home.write(".claude/settings.json", json); }
};

/// All pages on one sheet.
void keepPictures(const std::vector<QImage>& pages, const std::string& name) {
    const QSize size = pages.front().size();
    QImage sheet(size * 2, QImage::Format_RGB32);
    QPainter painter(&sheet);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const auto at = static_cast<int>(i);
        painter.drawImage(QRect(QPoint(at % 2 * size.width(), at / 2 * size.height()), size), pages[i]);
    }
    test::keepPicture(sheet, "settings-" + name);
}

void expectPictures(World& world, const std::string& name, double pixelRatio = 2) {
    const Warnings warnings;
    ClaudeFinder finder;
    ViewEngine engine(world.appearance);
    const auto hold = engine.hold();
    std::vector<QImage> pictures;
    for (const Page page : SettingsWindow::kPages) {
        SettingsPages pages(world.deps(), finder);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !finder.finding().isSearching; }, 20'000));
        pictures.push_back(pictureOf(*hold, {.view = QUrl("qrc:/qt/qml/Vorn/Settings/SettingsView.qml"),
                                             .properties = pages.properties(page),
                                             .pixelRatio = pixelRatio}));
        EXPECT_GT(pictures.back().width(), 500);
    }
    keepPictures(pictures, name);
    EXPECT_THAT(Warnings::texts(), testing::IsEmpty()) << name;
}

TEST(SettingsView, MirrorsAndGrowsWithTheFont) {
    for (const auto& [name, direction, points] :
         {std::tuple("right-to-left", Qt::RightToLeft, 10), std::tuple("large-type", Qt::LeftToRight, 16),
          std::tuple("small-type", Qt::LeftToRight, 8)}) {
        const test::ScopedType type(direction, points);
        World world;
        world.state.model->startDemo(demo::makeDemo(demo::Scenario::limited, world.state.now));
        expectPictures(world, name);
    }
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
             world.state.preferences.setGlyphStyle(GlyphStyle::steer);
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
             world.state.directory.write("preferences.ini", "[General\nrefreshMinutes=7\n\x01");
             world.state.preferences.setRefreshMinutes(7);
             world.state.preferences.setClaudePathOverride("/no/such/directory/of/any/kind/that/could/hold/claude");
             world.state.probe(ProbeFailure{.kind = ProbeFailure::Kind::commandFailed,
                                            .detail = "error: unknown option '--safe-mode'\nmore"});
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
             world.state.preferences.setClaudePathOverride(world.makeClaude("echo '2.1.330 (Claude Code)'"));
             world.state.probe(
                 ClientAnswer{.windows = {test::reading(WindowKind::session(), 38, std::chrono::hours(2)),
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

TEST(SettingsView, IsAmongTheSnapshots) {
    const Warnings warnings;
    World world;
    world.state.preferences.setClaudePathOverride(world.makeClaude("echo 2.1.330"));
    ASSERT_EQ(renderSnapshots({.model = *world.state.model,
                               .preferences = world.state.preferences,
                               .directory = world.home / "pictures"}),
              0);
    for (const Page page : SettingsWindow::kPages) {
        for (const char* const look : {"-light.png", "-dark.png", "-light@2x.png", "-dark@2x.png"}) {
            const std::string file = std::string("pictures/") + pictureName(page) + look;
            EXPECT_FALSE(QImage(QString::fromStdString(world.home / file)).isNull()) << file;
        }
    }
    EXPECT_THAT(Warnings::texts(), testing::IsEmpty());
}

TEST(SettingsPresenter, SaysWhatTheSystemLacks) {
    World world(false);
    SettingsPresenter settings(world.deps());
    EXPECT_FALSE(settings.content().canLaunchAtLogin);
    EXPECT_EQ(settings.content().loginText, "This system cannot start Vorn: it is not installed as an application.");
    EXPECT_EQ(settings.content().noticeProblem,
              "This system shows Vorn's notifications only when it is installed as an application.");
    settings.sendTest();
    EXPECT_EQ(settings.testText(), "");

    const test::ScopedEnvironment path("PATH", "/nowhere");
    ClaudeFinder finder;
    const ClaudePresenter::Sources sources{.model = *world.state.model,
                                           .preferences = world.state.preferences,
                                           .integrations = world.integrations,
                                           .finder = finder};
    const ClaudePresenter claude(sources);
    EXPECT_EQ(claude.content().executable, "Looking for claude…");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !finder.finding().isSearching; }, 10'000));
    EXPECT_EQ(claude.content().executable, "claude was not found");
    EXPECT_EQ(claude.content().executableProblem, "Install Claude Code, or choose its executable.");
    world.state.probe(ProbeFailure{.kind = ProbeFailure::Kind::claudeNotFound});
    EXPECT_EQ(claude.content().checkProblem, "") << "said above it";
    world.state.probe(ProbeFailure{.kind = ProbeFailure::Kind::commandFailed,
                                   .detail = "error: unknown option '--safe-mode'\nusage: claude"});
    EXPECT_EQ(claude.content().checkResult, "");
    EXPECT_THAT(claude.content().checkProblem.toStdString(),
                testing::MatchesRegex("Asked 12:00: .*safe-mode'\nThis .* update it to 2.1.170 .*"));

    const auto activityText = [&](const Answer& answer, ActivityCount count) {
        return claudeContent({.answer = answer,
                              .preferences = world.state.preferences,
                              .integrations = world.integrations,
                              .finding = finder.finding(),
                              .activity = count})
            .activityText;
    };
    const Answer& answer = world.state.model->answer();
    EXPECT_EQ(activityText({}, {}), "Reading…");
    EXPECT_EQ(activityText(answer, {}), "No replies in the last 7 days");
    EXPECT_EQ(activityText(answer, {.replies = 1, .projects = 1}), "1 reply in 1 project");
    EXPECT_EQ(activityText(answer, {.replies = 1234, .projects = 5}), "1,234 replies in 5 projects");
    world.state.preferences.setUseLocalActivity(false);
    EXPECT_EQ(claude.content().activityText, "Not read while this is off");
}

/// The window on a screen, driven as people do.
class SettingsWindowTest : public testing::Test {
protected:
    void TearDown() override {
        m_window.close();
        EXPECT_THAT(Warnings::texts(), testing::IsEmpty());
    }

    void open(Page page) {
        m_window.open(page);
        m_shown = test::shownWindow();
        ASSERT_TRUE(m_shown && QTest::qWaitForWindowActive(m_shown));
        layOut(*m_shown->contentItem());
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(m_shown, key, modifiers); }

    static void layOut(QQuickItem& item) {
        for (QQuickItem* const child : item.childItems()) {
            layOut(*child);
        }
        item.ensurePolished();
    }
    /// All items below one, with a name for those who listen.
    static void collect(QQuickItem& item, std::vector<std::pair<std::string, QQuickItem*>>& found) {
        for (QQuickItem* const child : item.childItems()) {
            if (!child->isVisible()) {
                continue;
            }
            QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(child);
            if (interface && !interface->text(QAccessible::Name).isEmpty()) {
                found.emplace_back(interface->text(QAccessible::Name).toStdString(), child);
            }
            collect(*child, found);
        }
    }
    [[nodiscard]] std::vector<std::pair<std::string, QQuickItem*>> named() const {
        std::vector<std::pair<std::string, QQuickItem*>> found;
        collect(*m_shown->contentItem(), found);
        return found;
    }
    /// The last of that name, which is the innermost; null when there is none.
    [[nodiscard]] QQuickItem* find(const std::string& name) const {
        QQuickItem* last = nullptr;
        for (const auto& [each, item] : named()) {
            last = each == name ? item : last;
        }
        return last;
    }
    [[nodiscard]] QPoint middle(const std::string& name) const {
        layOut(*m_shown->contentItem());
        const QQuickItem* const item = find(name);
        EXPECT_TRUE(item) << name;
        return item ? item->mapToScene({item->width() / 2, item->height() / 2}).toPoint() : QPoint();
    }
    void click(const std::string& name) { QTest::mouseClick(m_shown, Qt::LeftButton, {}, middle(name)); }
    void focus(const std::string& name) {
        QQuickItem* const item = find(name);
        ASSERT_TRUE(item) << name;
        item->forceActiveFocus(Qt::TabFocusReason);
    }
    /// All that can be read on the page, in its order.
    [[nodiscard]] std::string said() const {
        std::string all;
        for (const auto& [name, item] : named()) {
            all += name + "\n";
        }
        return all;
    }
    /// "tightestRing sessionPercent -sessionRing …", as the store holds it.
    [[nodiscard]] std::string storedLayout(std::size_t count) const {
        std::string text;
        const auto stored = m_world.stored();
        for (const MenuBarEntry& entry : stored->menuBarLayout()) {
            if (count-- == 0) {
                break;
            }
            text += std::string(text.empty() ? "" : " ") + (entry.isOn ? "" : "-") + rawValue(entry.item);
        }
        return text;
    }

    Warnings m_warnings;
    World m_world;
    ViewEngine m_engine{m_world.appearance, std::chrono::milliseconds(0)};
    SettingsWindow m_window{m_world.deps(), m_engine};
    QQuickWindow* m_shown = nullptr;
};

TEST_F(SettingsWindowTest, KeepsEverySwitchInTheStore) {
    const struct {
        Page page;
        const char* name;
        bool (Preferences::*value)() const;
    } cases[] = {
        {Page::menuBar, "Colour a ring when its limit is at risk", &Preferences::colorWhenAtRisk},
        {Page::notifications, "I'm on track to hit a limit", &Preferences::notifyAtRisk},
        {Page::notifications, "A limit is reached", &Preferences::notifyLimited},
        {Page::notifications, "A tight window resets", &Preferences::notifyReset},
        {Page::claudeCode, "Use local Claude Code activity for live pace", &Preferences::useLocalActivity},
    };
    for (const auto& [page, name, value] : cases) {
        SCOPED_TRACE(name);
        open(page);
        click(name);
        EXPECT_FALSE((m_world.stored().get()->*value)());
        focus(name);
        press(Qt::Key_Space);
        EXPECT_TRUE((m_world.stored().get()->*value)());
    }
    open(Page::general);
    click("Start at login");
    EXPECT_TRUE(m_world.loginItem.isEnabled());
}

TEST_F(SettingsWindowTest, ChoosesAmongSeveral) {
    m_world.state.preferences.setRefreshMinutes(7);
    open(Page::general);
    focus("Check usage every, 7 min");
    press(Qt::Key_Down);
    EXPECT_EQ(m_world.stored()->refreshMinutes(), 10);
    press(Qt::Key_Home);
    for (const double minutes : {1, 2, 5, 10, 15, 30, 30}) {
        EXPECT_EQ(m_world.stored()->refreshMinutes(), minutes);
        press(Qt::Key_Down);
    }
    press(Qt::Key_Home);
    press(Qt::Key_Space);
    ASSERT_TRUE(find("30 min"));
    EXPECT_FALSE(find("7 min")) << "offered only while it is chosen";
    press(Qt::Key_Down);
    press(Qt::Key_Escape);
    EXPECT_TRUE(m_window.isOpen()) << "Escape closes the list alone";
    EXPECT_EQ(m_world.stored()->refreshMinutes(), 1);
    click("Check usage every, 1 min");
    click("15 min");
    EXPECT_EQ(m_world.stored()->refreshMinutes(), 15);

    click("A single ring");
    EXPECT_EQ(m_world.stored()->trayCells(), TrayCells::singleRing);
    focus("A single ring");
    press(Qt::Key_Up);
    EXPECT_EQ(m_world.stored()->trayCells(), TrayCells::perItem);

    open(Page::menuBar);
    for (const GlyphStyle style : kAllGlyphStyles) {
        click(title(style));
        EXPECT_EQ(m_world.stored()->glyphStyle(), style);
        const auto* const spoken = QAccessible::queryAccessibleInterface(find(title(style)));
        EXPECT_EQ(spoken->text(QAccessible::Description), QString::fromUtf8(description(style)));
    }
    focus("Usage");
    press(Qt::Key_Space);
    press(Qt::Key_Right);
    EXPECT_EQ(m_world.stored()->glyphStyle(), GlyphStyle::steer);
    EXPECT_EQ(test::focusedName(), "Pace direction");
}

TEST_F(SettingsWindowTest, OrdersTheItemsByKeyboardArrowsAndMouse) {
    m_world.state.probe(ClientAnswer{.windows = {test::reading(WindowKind::session(), 38, std::chrono::hours(2)),
                                                 test::reading(WindowKind::week(), 41, std::chrono::hours(80))}});
    open(Page::menuBar);
    const auto picture = [this] {
        return said().substr(said().find("Now: "));
    };
    EXPECT_THAT(picture(), testing::StartsWith("Now: Week, 38%\n"));
    focus("Session %");
    press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_THAT(picture(), testing::StartsWith("Now: 38%, Week\n")) << "the picture follows at once";
    EXPECT_EQ(storedLayout(3), "sessionPercent tightestRing -sessionRing");
    EXPECT_EQ(test::focusedName(), "Session %") << "the focus goes along";
    press(Qt::Key_Up, Qt::AltModifier);
    press(Qt::Key_Space);
    EXPECT_EQ(storedLayout(2), "-sessionPercent tightestRing");
    press(Qt::Key_Down, Qt::AltModifier);
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(storedLayout(3), "tightestRing -sessionRing -sessionPercent");
    press(Qt::Key_Up);
    EXPECT_EQ(test::focusedName(), "Ring · session (5h)");

    click("Move Week % up");
    EXPECT_EQ(storedLayout(6), "tightestRing -sessionRing -sessionPercent -sessionReset -weekPercent -weekRing");
    // Rows glide to their places.
    const int height = qRound(find("Week %")->height());
    const auto settles = [this](const char* upper, const char* lower, int distance) {
        return QTest::qWaitFor([&] { return middle(lower).y() - middle(upper).y() == distance; });
    };
    ASSERT_TRUE(settles("Week %", "Ring · week (7d)", height));
    click("Ring · week (7d)");
    EXPECT_EQ(storedLayout(6), "tightestRing -sessionRing -sessionPercent -sessionReset -weekPercent weekRing");

    const QPoint from = middle("Ring · tightest limit");
    const QPoint step(0, height * 3 / 4);
    QTest::mousePress(m_shown, Qt::LeftButton, {}, from);
    for (int i = 1; i <= 4; ++i) {
        QTest::mouseMove(m_shown, from + step * i);
    }
    QTest::mouseRelease(m_shown, Qt::LeftButton, {}, from + step * 4);
    EXPECT_EQ(storedLayout(5), "-sessionRing -sessionPercent -sessionReset tightestRing -weekPercent");
    ASSERT_TRUE(settles("Ring · tightest limit", "Week %", height));
    QTest::mousePress(m_shown, Qt::LeftButton, {}, from + step * 4);
    QTest::mouseMove(m_shown, from + QPoint(0, -20));
    QTest::mouseMove(m_shown, from + QPoint(0, -200));
    QTest::mouseRelease(m_shown, Qt::LeftButton, {}, from + QPoint(0, -200));
    EXPECT_EQ(storedLayout(2), "tightestRing -sessionRing") << "dropped above the list";
}

TEST_F(SettingsWindowTest, SaysWhatDoesNotWorkWhereItBelongs) {
    m_world.loginItem.refusal = "The autostart folder is read-only.";
    open(Page::general);
    click("Start at login");
    EXPECT_THAT(said(), HasSubstr("The autostart folder is read-only."));
    m_world.hotKey.trouble = "Another program uses Ctrl+Alt+P.";
    emit m_world.hotKey.stateChanged();
    EXPECT_THAT(said(), HasSubstr("Another program uses Ctrl+Alt+P."));

    open(Page::notifications);
    EXPECT_THAT(said(), testing::Not(HasSubstr("Until then")));
    click("Send test");
    EXPECT_THAT(m_world.notices.posted, testing::SizeIs(1));
    EXPECT_THAT(said(), testing::Not(HasSubstr("autostart")));
    m_world.notices.trouble = "No server answers.";
    emit m_world.notices.problemChanged();
    EXPECT_THAT(said(), HasSubstr("No server answers. Until then the tray alone warns."));
    click("Send test");
    EXPECT_THAT(m_world.notices.posted, testing::SizeIs(1)) << "disabled";

    m_world.state.directory.write("preferences.ini", "[General\nnotifyReset\x01");
    m_world.state.preferences.setNotifyReset(false);
    for (const Page page : SettingsWindow::kPages) {
        open(page);
        EXPECT_THAT(said(), HasSubstr("The settings file was damaged."));
    }
}

TEST_F(SettingsWindowTest, ConnectsTheStatusLineAndSaysWhyItCannot) {
    const std::filesystem::path relay = runningExecutable().parent_path() / "vorn-bridge";
    std::filesystem::remove(relay);
    m_world.writeClaudeSettings(R"({"statusLine": {"type": "command", "command": "~/prompt.sh"}})");
    open(Page::claudeCode);
    EXPECT_THAT(said(), HasSubstr("Not connected"));
    click("Connect");
    EXPECT_THAT(said(), HasSubstr("vorn-bridge is missing from the app bundle."));

    replaceFile({.path = relay, .content = "#!/bin/sh\n", .mode = 0755});
    click("Connect");
    EXPECT_THAT(said(), testing::AllOf(HasSubstr("Connected Live figures after every reply; none yet."),
                                       HasSubstr("Your own command still runs: "), testing::Not(HasSubstr("missing"))));
    m_world.writeClaudeSettings("{");
    click("Disconnect");
    EXPECT_THAT(said(), HasSubstr("Couldn't read Claude Code settings: "));
    m_world.writeClaudeSettings(R"({"statusLine": {"type": "command", "command": "'/old/vorn-bridge' --chain"}})");
    m_world.integrations.refresh();
    EXPECT_THAT(said(), HasSubstr("Needs to be reconnected Claude Code runs '/old/vorn-bridge' --chain"));
    click("Reconnect");
    EXPECT_THAT(said(), HasSubstr("Connected Live figures"));
    click("Disconnect");
    EXPECT_THAT(said(), HasSubstr("Not connected"));
    std::filesystem::remove(relay);

    m_world.integrations.setReadOnly("Only a demonstration.");
    m_world.state.model->startDemo(demo::makeDemo(demo::Scenario::watch, m_world.state.now));
    EXPECT_THAT(said(), HasSubstr("Only a demonstration."));
    EXPECT_FALSE(find("Connect")->isEnabled());
    EXPECT_FALSE(find("Check now")->isEnabled());
}

TEST_F(SettingsWindowTest, FindsClaudeAndAsksIt) {
    const auto shows = [this](const char* text) {
        return QTest::qWaitFor([&] { return said().find(text) != std::string::npos; }, 10'000);
    };
    open(Page::claudeCode);
    const struct {
        const char* script;
        const char* text;
    } cases[] = {{"echo '2.1.330 (Claude Code)'; echo more", "~/my/claude Chosen by you · 2.1.330"},
                 {"echo broken >&2; exit 3", "claude --version failed: broken"},
                 {"true", "claude --version printed nothing."}};
    for (const auto& [script, text] : cases) {
        m_world.state.preferences.setClaudePathOverride("/nowhere/claude");
        EXPECT_TRUE(shows("There is no program that can be run. Choose another one.")) << said();
        m_world.state.preferences.setClaudePathOverride(m_world.makeClaude(script));
        EXPECT_TRUE(shows(text)) << said();
    }
    const QSignalSpy choose(&m_world.requests, &AppRequests::chooseClaude);
    click("Choose…");
    EXPECT_EQ(choose.size(), 1);
    click("Automatic");
    EXPECT_EQ(m_world.stored()->claudePathOverride(), "");

    m_world.state.start();
    std::exchange(m_world.state.unansweredProbe, nullptr)(ProbeFailure{});
    m_world.state.client = [] {
        return ProbeFailure{.kind = ProbeFailure::Kind::timedOut};
    };
    click("Check now");
    EXPECT_TRUE(shows("Asked 12:00: claude /usage didn't answer in time.")) << said();
    m_world.state.client = [] {
        return ClientAnswer{.windows = {test::reading(WindowKind::session(), 38, std::chrono::hours(2))}};
    };
    click("Check now");
    EXPECT_TRUE(shows("Answered 12:00: Session 38%.")) << said();
}

/// Texts longer than they become in any other language.
class LongWords : public QTranslator {
public:
    LongWords() { QCoreApplication::installTranslator(this); }
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char*, const char* text, const char*, int) const override {
        const QString source = QString::fromUtf8(text);
        return source + QString(" and once more").repeated(std::max(1, static_cast<int>(source.size()) / 8));
    }
};

TEST_F(SettingsWindowTest, HoldsLongWords) {
    const LongWords words;
    m_world.state.preferences.setClaudePathOverride(m_world.makeClaude("echo 2.1.330-a.very.long.version+of.somebody"));
    m_world.writeClaudeSettings(R"({"statusLine": {"type": "command", "command": "/a/path/that/is/old/vorn-bridge"}})");
    MenuBarLayout layout = m_world.state.preferences.menuBarLayout();
    std::ranges::for_each(layout, [](MenuBarEntry& entry) { entry.isOn = true; });
    m_world.state.preferences.setMenuBarLayout(layout);
    for (const Page page : SettingsWindow::kPages) {
        open(page);
        for (const auto& [name, item] : named()) {
            const QRectF place = item->mapRectToScene({0, 0, item->width(), item->height()});
            EXPECT_TRUE(place.left() >= 0 && place.right() <= m_shown->width()) << name;
        }
        test::keepPicture(m_shown->grabWindow(), std::string("settings-long-words-") + pictureName(page));
    }
}

TEST_F(SettingsWindowTest, RemembersItsPageAndPlaceAndLetsGoOfTheEngine) {
    open(Page::general);
    EXPECT_EQ(test::focusedName(), "General");
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(test::focusedName(), "Notifications");
    EXPECT_TRUE(find("Send test"));
    m_shown->setGeometry(31, 42, 600, 500);
    const QSignalSpy closed(&m_window, &SettingsWindow::closed);
    press(Qt::Key_Escape);
    EXPECT_EQ(closed.size(), 1);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_engine.isLoaded(); }));
    EXPECT_EQ(m_world.place, (WindowPlace{.rect = {31, 42, 600, 500}}));

    m_world.place.rect.moveTo(5000, -5000);
    m_window.open();
    open(Page::notifications);
    EXPECT_TRUE(find("Send test"));
    EXPECT_EQ(m_shown->size(), QSize(600, 500));
    EXPECT_LT(m_shown->x(), 800) << "that screen is gone";
    open(Page::claudeCode);
    EXPECT_EQ(test::focusedName(), "Claude Code") << "asked for from elsewhere";
    m_shown->close();
    EXPECT_FALSE(m_window.isOpen());
}

}  // namespace
}  // namespace vorn
