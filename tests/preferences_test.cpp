#include "model/preferences/preferences.hpp"

#include <QSettings>
#include <cmath>

#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "model/preferences/choices_file.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using test::readAll;
using testing::ElementsAre;
using testing::HasSubstr;
using enum MenuBarItem;

std::vector<MenuBarItem> shown(const MenuBarLayout& layout) {
    std::vector<MenuBarItem> items;
    for (const MenuBarEntry& entry : layout) {
        if (entry.isOn) {
            items.push_back(entry.item);
        }
    }
    return items;
}

std::vector<MenuBarItem> order(const MenuBarLayout& layout) {
    std::vector<MenuBarItem> items;
    for (const MenuBarEntry& entry : layout) {
        items.push_back(entry.item);
    }
    return items;
}

TEST(MenuBarLayout, KeepsWhatItUnderstandsOfAStoredOne) {
    const auto layout = decodeMenuBarLayout(R"([
        {"item": "weekRing", "isOn": true}, null, {"item": "moonPhase", "isOn": true}, {"item": "paceFactor"},
        {"item": "sessionsLeft", "isOn": 1}, {"isOn": true}, "sessionRing", [], {"item": 7, "isOn": true},
        {"item": "weekReset", "isOn": true, "since": 9}, {"item": "weekRing", "isOn": false}])");
    ASSERT_TRUE(layout);
    EXPECT_THAT(shown(*layout), ElementsAre(weekRing, weekReset));  // the first of two counts
    EXPECT_THAT(order(*layout), ElementsAre(weekRing, weekReset, tightestRing, sessionRing, sessionPercent,
                                            sessionReset, weekPercent, paceFactor, sessionsLeft));
    EXPECT_EQ(decodeMenuBarLayout(encode(*layout)), layout);

    const auto none = decodeMenuBarLayout("[]");
    ASSERT_TRUE(none);
    EXPECT_THAT(shown(*none), ElementsAre());
    EXPECT_THAT(order(*none), testing::ElementsAreArray(kAllMenuBarItems));

    for (const char* text : {"", "null", "{}", R"({"item": "weekRing", "isOn": true})", R"([{"item": "weekRing")"}) {
        EXPECT_EQ(decodeMenuBarLayout(text), std::nullopt) << text;
    }
}

TEST(MenuBarLayout, ComesFromTheSettingsOfAnOlderVersion) {
    const std::tuple<const char*, const char*, std::vector<MenuBarItem>> cases[] = {
        {"", "", {tightestRing, sessionPercent}},
        {"binding", "none", {tightestRing}},
        {"session", "timeToReset", {sessionRing, sessionReset}},
        {"week", "sessionAndWeek", {weekRing, weekPercent, sessionPercent}},
        {"both", "sessionAndWeek", {sessionRing, sessionPercent, weekRing, weekPercent}},
        {"both", "sessionPercent", {sessionRing, sessionPercent, weekRing}},
        {"both", "paceFactor", {sessionRing, weekRing, paceFactor}},
        {"Both", "something", {tightestRing, sessionPercent}},
    };
    for (const auto& [window, text, items] : cases) {
        const MenuBarLayout layout = migratedMenuBarLayout(window, text);
        EXPECT_EQ(shown(layout), items) << window << ' ' << text;
        EXPECT_EQ(layout.size(), kAllMenuBarItems.size());
    }
}

class PreferencesTest : public testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<Preferences> open() const {
        return std::make_unique<Preferences>(
            std::make_unique<QSettings>(QString::fromStdString(m_file), QSettings::IniFormat));
    }
    /// With what somebody else wrote to the file, at times that QSettings can tell apart.
    [[nodiscard]] std::unique_ptr<Preferences> open(std::string_view content) {
        m_file = m_dir / ("store-" + std::to_string(++m_files) + ".conf");
        m_dir.write(m_file.filename().string(), content);
        return open();
    }

    const test::TemporaryDirectory m_dir;
    fs::path m_file = m_dir / "new/Vorn.conf";
    int m_files = 0;
};

TEST_F(PreferencesTest, StoresAtOnceAndNotifiesOnlyOfRealChanges) {
    const auto preferences = open();
    EXPECT_EQ(preferences->refreshMinutes(), 5);
    EXPECT_THAT(preferences->menuBarItems(), ElementsAre(tightestRing, sessionPercent));
    EXPECT_FALSE(fs::exists(m_file));
    int notices = 0;
    for (const auto changed :
         {&Preferences::refreshMinutesChanged, &Preferences::colorWhenAtRiskChanged, &Preferences::notifyAtRiskChanged,
          &Preferences::notifyLimitedChanged, &Preferences::notifyResetChanged, &Preferences::claudePathOverrideChanged,
          &Preferences::useLocalActivityChanged, &Preferences::glyphStyleChanged, &Preferences::trayCellsChanged,
          &Preferences::menuBarLayoutChanged}) {
        QObject::connect(preferences.get(), changed, [&] { ++notices; });
    }
    const QString path = QStringLiteral("/opt/my, \"own\" Clöde\\n=;%41/claude ");
    const auto set = [&](double minutes, bool on) {
        preferences->setRefreshMinutes(minutes);
        preferences->setColorWhenAtRisk(on);
        preferences->setNotifyAtRisk(on);
        preferences->setNotifyLimited(on);
        preferences->setNotifyReset(on);
        preferences->setClaudePathOverride(on ? QString() : path);
        preferences->setUseLocalActivity(on);
        preferences->setGlyphStyle(on ? GlyphStyle::usageAndSteer : GlyphStyle::steer);
        preferences->setTrayCells(on ? TrayCells::perItem : TrayCells::singleRing);
        preferences->moveMenuBarItem(tightestRing, on ? -1 : 2);
    };
    set(5, true);
    preferences->setRefreshMinutes(std::nan(""));
    for (const auto& [item, offset] :
         {std::pair{sessionsLeft, 1}, {weekRing, 0}, {weekRing, INT_MAX}, {weekRing, INT_MIN}}) {
        preferences->moveMenuBarItem(item, offset);
    }
    preferences->setMenuBarLayout(preferences->menuBarLayout());
    EXPECT_EQ(notices, 0);
    EXPECT_FALSE(fs::exists(m_file));

    set(2.5, false);
    EXPECT_EQ(notices, 10);
    set(2.5, false);
    EXPECT_EQ(notices, 11);  // the layout moved again
    EXPECT_EQ(preferences->storeProblem(), "");
    // As another process would find it, this one being alive still.
    fs::copy_file(m_file, m_dir / "copy.conf");
    m_file = m_dir / "copy.conf";
    const auto again = open();
    EXPECT_EQ(again->refreshMinutes(), 2.5);
    EXPECT_FALSE(again->colorWhenAtRisk() || again->notifyAtRisk() || again->notifyLimited() || again->notifyReset() ||
                 again->useLocalActivity());
    EXPECT_EQ(again->claudePathOverride(), path);
    EXPECT_EQ(again->glyphStyle(), GlyphStyle::steer);
    EXPECT_EQ(again->trayCells(), TrayCells::singleRing);
    EXPECT_EQ(again->menuBarLayout(), preferences->menuBarLayout());
    EXPECT_EQ(order(again->menuBarLayout())[4], tightestRing);  // swapped twice, two places to the right

    for (const auto& [minutes, kept] : {std::pair{0.0, 1.0}, {1e9, 1440.0}, {-INFINITY, 1.0}}) {
        again->setRefreshMinutes(minutes);
        EXPECT_EQ(again->refreshMinutes(), kept);
    }
    again->setMenuBarLayout({{weekReset, true}, {weekReset, false}});
    EXPECT_EQ(again->menuBarLayout().size(), kAllMenuBarItems.size());
    EXPECT_THAT(again->menuBarItems(), ElementsAre(weekReset));
}

TEST_F(PreferencesTest, TakesWhatTheStoreCannotMeanForNotStored) {
    for (const char* minutes : {"0.99", "1441", "nan", "inf", "-5", "five", "1, 2", "@Invalid()", ""}) {
        const auto preferences = open(std::string("[General]\nrefreshMinutes=") + minutes + "\n");
        EXPECT_EQ(preferences->refreshMinutes(), 5) << minutes;
        EXPECT_EQ(preferences->storeProblem(), "") << minutes;
    }
    for (const auto& [flag, isOn] : {std::pair{"false", false}, {"0", false}, {"no", true}, {"", true}, {"2", true}}) {
        EXPECT_EQ(open(std::string("[General]\nuseLocalActivity=") + flag + "\n")->useLocalActivity(), isOn) << flag;
    }
    const std::string foreign =
        "[General]\nglyphStyle=spiral\ntrayCells=4\nclaudePathOverride=/a, /b\nfuture=7\n"
        "menuBarLayout=\"{}\"\nsteerWindow=both\nmenuBarText=none\n";
    const auto preferences = open(foreign);
    EXPECT_EQ(preferences->glyphStyle(), GlyphStyle::usageAndSteer);
    EXPECT_EQ(preferences->trayCells(), TrayCells::perItem);
    EXPECT_EQ(preferences->claudePathOverride(), "");
    EXPECT_THAT(preferences->menuBarItems(), ElementsAre(sessionRing, weekRing));
    preferences->setGlyphStyle(GlyphStyle::usageAndSteer);
    EXPECT_EQ(readAll(m_file), foreign);
    preferences->setNotifyReset(false);
    EXPECT_THAT(readAll(m_file), testing::AllOf(HasSubstr("future=7"), HasSubstr("glyphStyle=spiral")));
    EXPECT_THAT(
        open("[General]\nmenuBarLayout=\"[{\\\"item\\\":\\\"weekReset\\\",\\\"isOn\\\":true}]\"\n")->menuBarItems(),
        ElementsAre(weekReset));  // as a person would write it
}

TEST_F(PreferencesTest, ActsInMemoryWhileTheStoreCannotBeWritten) {
    m_dir.write("file", "");
    m_file = m_dir / "file/Vorn.conf";
    const auto preferences = open();
    int told = 0;
    QObject::connect(preferences.get(), &Preferences::storeProblemChanged, [&] { ++told; });
    preferences->setNotifyReset(false);
    preferences->setRefreshMinutes(30);
    EXPECT_FALSE(preferences->notifyReset());
    EXPECT_THAT(preferences->storeProblem().toStdString(), HasSubstr("cannot be saved to " + m_file.string()));
    EXPECT_EQ(told, 1);
    fs::remove(m_dir / "file");
    preferences->setNotifyAtRisk(false);
    EXPECT_EQ(preferences->storeProblem(), "");
    EXPECT_EQ(told, 2);
    EXPECT_THAT(readAll(m_file), testing::AllOf(HasSubstr("refreshMinutes=30"), HasSubstr("notifyReset=false")));

    m_file = m_dir / "folder";
    fs::create_directories(m_file / "full");
    const auto blocked = open();
    EXPECT_THAT(blocked->storeProblem().toStdString(), HasSubstr("cannot be read"));
    blocked->setRefreshMinutes(30);
    EXPECT_THAT(blocked->storeProblem().toStdString(), HasSubstr("cannot be saved"));
    EXPECT_EQ(blocked->refreshMinutes(), 30);
}

TEST_F(PreferencesTest, SaysSoBeforeAnythingChangesInAReadOnlyStore) {
    const std::string content = "[General]\nrefreshMinutes=7\n";
    const fs::path file = m_dir.write("Vorn.conf", content);
    const bool isRoot = ::geteuid() == 0;  // whom nothing is read-only to
    fs::permissions(file, fs::perms(0444));
    fs::permissions(m_dir.path(), fs::perms(0555));
    if (isRoot) {
        ASSERT_EQ(::seteuid(65534), 0);
    }
    m_file = file;
    {
        const auto preferences = open();
        EXPECT_THAT(preferences->storeProblem().toStdString(), HasSubstr(file.string() + " is read-only. "));
        EXPECT_EQ(preferences->refreshMinutes(), 7);
        preferences->setRefreshMinutes(8);
        EXPECT_THAT(preferences->storeProblem().toStdString(), HasSubstr("cannot be saved to "));
        EXPECT_EQ(preferences->refreshMinutes(), 8);
    }
    if (isRoot) {
        ASSERT_EQ(::seteuid(0), 0);
    }
    fs::permissions(m_dir.path(), fs::perms(0700));
    EXPECT_EQ(readAll(file), content);
}

TEST_F(PreferencesTest, KeepsACopyOfADamagedFile) {
    for (const std::string& damaged :
         {std::string("[General]\nnotifyReset=false\nrefreshMinut"), std::string("\x7f"
                                                                                 "ELF\0\1\2\n\xff\xfe",
                                                                                 10)}) {
        const auto preferences = open(damaged);
        EXPECT_THAT(preferences->storeProblem().toStdString(), HasSubstr(" is damaged. "));
        EXPECT_EQ(readAll(m_file), damaged);
        preferences->setRefreshMinutes(30);
        EXPECT_EQ(readAll(m_file.string() + ".damaged"), damaged);
        EXPECT_THAT(preferences->storeProblem().toStdString(), HasSubstr("a copy is kept as " + m_file.string()));
        EXPECT_THAT(readAll(m_file), HasSubstr("refreshMinutes=30"));
    }
    // Damaged while Vorn runs, and no place for the copy.
    const auto preferences = open("[General]\nrefreshMinutes=7\n");
    const std::string damaged = "all of it lost\n";
    m_dir.write(m_file.filename().string(), damaged);
    fs::create_directory(m_file.string() + ".damaged");
    preferences->setRefreshMinutes(8);
    preferences->setNotifyReset(false);
    EXPECT_EQ(readAll(m_file), damaged);
    EXPECT_THAT(preferences->storeProblem().toStdString(), HasSubstr("no copy of it can be kept"));
    fs::remove(m_file.string() + ".damaged");
    preferences->setNotifyLimited(false);
    EXPECT_THAT(readAll(m_file), testing::AllOf(HasSubstr("refreshMinutes=8"), HasSubstr("notifyReset=false")));
}

TEST_F(PreferencesTest, TellsTheTerminalToolWhatItHonours) {
    const auto preferences = open();
    const fs::path file = m_dir / "home/choices.json";
    {
        const ChoicesFile choices(*preferences, file);
        EXPECT_FALSE(fs::exists(file));  // nothing there says the same
        preferences->setClaudePathOverride(QStringLiteral("/opt/Clöde"));
        preferences->setUseLocalActivity(false);
        preferences->setRefreshMinutes(7.5);
        const SharedChoices expected{
            .claudePath = "/opt/Clöde", .useLocalActivity = false, .refresh = std::chrono::seconds{450}};
        EXPECT_EQ(loadSharedChoices(file), expected);
    }
    m_dir.write("home/choices.json", "{");
    const ChoicesFile again(*preferences, file);
    EXPECT_EQ(loadSharedChoices(file).claudePath, "/opt/Clöde");
    fs::remove_all(file.parent_path());
    m_dir.write("home", "in the way");
    preferences->setUseLocalActivity(true);

    const SharedChoices defaults;
    for (const char* text : {"", "[]", "null", R"({"claudePath": 7, "useLocalActivity": "no", "refreshMinutes": "9"})",
                             R"({"refreshMinutes": 0.5})", R"({"refreshMinutes": 1e300})", R"({"claudePath": null})"}) {
        EXPECT_EQ(loadSharedChoices(m_dir.write("choices.json", text)), defaults) << text;
    }
    EXPECT_FALSE(loadSharedChoices(m_dir.write("choices.json", R"({"claudePath": [], "useLocalActivity": false})"))
                     .useLocalActivity);
}

TEST_F(PreferencesTest, LiesInTheUsersConfigurationFolder) {
    const test::ScopedEnvironment config("XDG_CONFIG_HOME", m_dir.path().c_str());
    EXPECT_EQ(Preferences::standardStore()->fileName().toStdString(), m_dir / "Vorn/Vorn.conf");
}

}  // namespace
}  // namespace vorn
