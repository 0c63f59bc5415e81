#include <QAccessible>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/sources/activity_summary.hpp"
#include "platform/desktop_appearance.hpp"
#include "tests/support/qt_warnings.hpp"
#include "tests/support/view_looks.hpp"
#include "tests/support/view_states.hpp"
#include "ui/views/activity_presenter.hpp"
#include "ui/views/breakdown_presenter.hpp"
#include "ui/views/resets_presenter.hpp"
#include "ui/views/session_week_presenter.hpp"
#include "ui/views/view_engine.hpp"

namespace vorn {
namespace {

using namespace test;

/// The cards in a window, with presenters of one model.
class Cards {
public:
    explicit Cards(UsageModel& model, const DesktopAppearance::Look& look = {})
        : resets(model), m_sessionWeek(model), m_activity(model), m_breakdown(model) {
        m_appearance.setLook(look);
        m_hold = m_engine.hold();
        window.setColor(look.isDark ? "#1B1D21" : "#F3F4F6");
    }

    void add(const char* file, QObject& presenter, int width, QPoint at) {
        QQmlComponent component(m_hold.get(), QUrl(QString("qrc:/qt/qml/Vorn/%1.qml").arg(file)));
        auto* const item = component.isReady()
                               ? qobject_cast<QQuickItem*>(component.createWithInitialProperties(
                                     {{"presenter", QVariant::fromValue(&presenter)}, {"width", width}}))
                               : nullptr;
        ASSERT_NE(item, nullptr) << component.errorString().toStdString();
        item->setParent(window.contentItem());
        item->setParentItem(window.contentItem());
        item->setPosition(at);
        item->setHeight(item->implicitHeight());
        QObject::connect(item, &QQuickItem::implicitHeightChanged, item,
                         [item] { item->setHeight(item->implicitHeight()); });
    }
    void addAll() {
        add("SessionWeekCard", m_sessionWeek, 288, {664, 12});
        add("ResetsCard", resets, 288, {664, 230});
        add("ActivityStrip", m_activity, 640, {12, 12});
        add("BreakdownCard", m_breakdown, 640, {12, 180});
        show({964, 840});
    }
    void show(QSize size) {
        window.resize(size);
        window.show();
        window.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    void keep(const std::string& name) { test::keepPicture(window.grabWindow(), name); }
    void press(Qt::Key key, int times = 1) {
        for (int i = 0; i < times; ++i) {
            QTest::keyClick(&window, key);
        }
    }
    void type(const char* text) {
        for (; *text != 0; ++text) {
            QTest::keyClick(&window, *text);
        }
    }
    /// What has the keyboard, by its name for those who listen.
    static std::string focused() {
        QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(QGuiApplication::focusObject());
        return interface ? interface->text(QAccessible::Name).toStdString() : "";
    }
    void tabTo(const std::string& name) {
        for (int i = 0; i < 30 && focused() != name; ++i) {
            press(Qt::Key_Tab);
        }
        ASSERT_EQ(focused(), name);
    }

    ResetsPresenter resets;
    QQuickWindow window;

private:
    DesktopAppearance m_appearance;
    ViewEngine m_engine{m_appearance};
    ViewEngine::Hold m_hold;
    SessionWeekPresenter m_sessionWeek;
    ActivityPresenter m_activity;
    BreakdownPresenter m_breakdown;
};

TEST(Cards, ShowEveryStateWithoutAWarning) {
    const ScopedEnvironment american("LC_ALL", "en_US.UTF-8");
    for (const auto& [name, enter] : allViewStates()) {
        SCOPED_TRACE(name);
        for (const bool isDark : {false, true}) {
            const test::Warnings warnings;
            ViewState state;
            enter(state);
            Cards cards(*state.model, {.isDark = isDark});
            QGuiApplication::setLayoutDirection(isDark && name == "watch" ? Qt::RightToLeft : Qt::LeftToRight);
            cards.addAll();
            cards.keep(name + (isDark ? "-dark" : "-light"));
            EXPECT_THAT(test::Warnings::texts(), testing::IsEmpty());
        }
    }
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST(Cards, AddAndRemoveAResetByTheKeyboard) {
    const ScopedEnvironment american("LC_ALL", "en_US.UTF-8");
    const ScopedEnvironment zone("TZ", "UTC");
    ViewState state;
    state.model->startDemo(demo::makeDemo(demo::Scenario::watch, state.now));
    Cards cards(*state.model);
    cards.add("ResetsCard", cards.resets, 288, {12, 12});
    cards.show({312, 700});
    cards.tabTo("Add…");
    cards.press(Qt::Key_Return);
    ASSERT_EQ(Cards::focused(), "Date");
    cards.type("yesterday");
    cards.press(Qt::Key_Return);
    EXPECT_EQ(cards.resets.problem().date, "Write the date like 11/23/2026");
    EXPECT_EQ(Cards::focused(), "Date");
    cards.keep("reset-form-problem");
    cards.press(Qt::Key_Home);
    QTest::keySequence(&cards.window, QKeySequence::SelectAll);
    cards.type("11/25/2026");
    cards.tabTo("Time");
    cards.type("6:30 pm");
    cards.press(Qt::Key_Tab);
    cards.press(Qt::Key_Down, 2);
    cards.press(Qt::Key_Tab);
    cards.type("by mail");
    cards.press(Qt::Key_Return);
    ASSERT_EQ(state.model->resetPlan().planned.size(), 1U);
    const PlannedReset added = state.model->resetPlan().planned.front();
    EXPECT_EQ(formatIso8601(added.date), "2026-11-25T18:30:00Z");
    EXPECT_EQ(added.scope, PlannedReset::Scope::week);
    EXPECT_EQ(added.note, "by mail");
    EXPECT_EQ(Cards::focused(), "Add…");

    cards.press(Qt::Key_Return);
    cards.press(Qt::Key_Escape);
    EXPECT_EQ(Cards::focused(), "Add…");
    cards.press(Qt::Key_Tab);
    EXPECT_THAT(Cards::focused(), testing::StartsWith("Remove Wed, Nov 25"));
    cards.press(Qt::Key_Space);
    EXPECT_THAT(state.model->resetPlan().planned, testing::IsEmpty());
}

TEST(Cards, RedeemOnlyAfterAskingTwice) {
    ViewState state;
    state.model->startDemo(demo::makeDemo(demo::Scenario::watch, state.now));
    Cards cards(*state.model);
    cards.add("ResetsCard", cards.resets, 288, {12, 12});
    cards.show({312, 700});
    cards.tabTo("Banked resets, 0");
    cards.press(Qt::Key_Up, 2);
    EXPECT_EQ(state.model->resetPlan().banked, 2);
    cards.tabTo("Redeem…");
    cards.press(Qt::Key_Return);
    ASSERT_EQ(Cards::focused(), "Covers, All limits");
    cards.press(Qt::Key_Return);
    EXPECT_EQ(state.model->resetPlan().banked, 2);
    cards.keep("redeem");
    ASSERT_EQ(Cards::focused(), "Yes, redeemed");
    cards.press(Qt::Key_Return);
    EXPECT_EQ(state.model->resetPlan().banked, 1);
}

TEST(ResetForm, ReadsDatesAsTheUserWritesThem) {
    const ScopedEnvironment zone("TZ", "UTC");
    const struct {
        const char *locale, *date, *time, *moment;
    } cases[] = {{"en_US.UTF-8", "11/25/2026", "6:00 PM", "2026-11-25T18:00:00Z"},
                 {"en_US.UTF-8", "11/25/26", "6 pm", "2026-11-25T18:00:00Z"},
                 {"de_DE.UTF-8", "25.11.2026", "18:00", "2026-11-25T18:00:00Z"},
                 {"en_GB.UTF-8", " 25/11/2026 ", "07:05", "2026-11-25T07:05:00Z"},
                 {"de_DE.UTF-8", "2026-11-25", "6:00 pm", "2026-11-25T18:00:00Z"},
                 {"C", "2026-11-25", "0:00", "2026-11-25T00:00:00Z"},
                 {"C", "2026-02-30", "18:00", ""},
                 {"C", "2026-11-25 x", "18:00", ""},
                 {"C", "2026-11-25", "25:00", ""},
                 {"C", "", "", ""},
                 {"C", "2026-11-22", "12:00", ""}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.locale) + " " + c.date + " " + c.time);
        const ScopedEnvironment locale("LC_ALL", c.locale);
        const ReadMoment read = readMoment({.date = c.date, .time = c.time}, kNow);
        EXPECT_EQ(read.moment ? formatIso8601(*read.moment) : "", c.moment);
        EXPECT_EQ(read.problem == ResetProblem{}, read.moment.has_value());
    }
}

TEST(Breakdown, KeepsTheRestLastAndSplitsFindings) {
    std::vector<ActivityEvent> events;
    for (int i = 0; i < 9; ++i) {
        events.push_back(
            {.timestamp = kNow, .model = "sonnet", .cwd = "/p" + std::to_string(i), .tokens = {.input = 10 - i}});
    }
    const auto measured = measuredBreakdown(ActivitySummary(events), kNow - 1h);
    ASSERT_EQ(measured.projects.size(), 7U);
    EXPECT_TRUE(measured.projects.back().isRest);
    EXPECT_FALSE(measured.projects[5].isRest);
    EXPECT_NE(measuredBreakdown(ActivitySummary(), kNow).nothing, "");

    const UsageInsights insights{.periods = {{.label = "Last 24h",
                                              .requests = 1,
                                              .sessions = 2,
                                              .findings = {{71, "Check models · it · pays"}, {5, "Plain"}}}}};
    const auto printed = printedBreakdown(&insights, 9);
    EXPECT_EQ(printed.period, 0);
    EXPECT_EQ(printed.heading, "Claude Code · 1 request · 2 sessions");
    EXPECT_EQ(printed.findings[0].title, "Check models");
    EXPECT_EQ(printed.findings[0].detail, "it · pays");
    EXPECT_EQ(printed.findings[1].detail, "");
    EXPECT_NE(printedBreakdown(nullptr, 0).nothing, "");
}

TEST(Activity, IsAlignedWithTheClockAndReadOut) {
    const ScopedEnvironment zone("TZ", "Asia/Kolkata");
    ViewState state;
    EXPECT_NE(activityContent(*state.model, ActivityPresenter::Day).nothing, "");
    state.model->startDemo(demo::makeDemo(demo::Scenario::watch, state.now));
    const auto day = activityContent(*state.model, ActivityPresenter::Day);
    EXPECT_EQ(day.buckets.size(), 144U);
    EXPECT_EQ(day.marks.size(), 8U);
    const auto week = activityContent(*state.model, ActivityPresenter::Week);
    EXPECT_EQ(week.buckets.size(), 84U);
    EXPECT_EQ(week.marks.size(), 7U);
    EXPECT_GT(week.buckets.back().start + week.width, state.now);
    ActivityPresenter presenter(*state.model);
    EXPECT_THAT(presenter.describe(143).toStdString(), testing::HasSubstr("17:30 – 17:40"));
    EXPECT_EQ(presenter.describe(144), "");
}

}  // namespace
}  // namespace vorn

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", qEnvironmentVariable("VORN_TEST_PLATFORM", "offscreen").toUtf8());
    testing::InitGoogleTest(&argc, argv);
    vorn::ViewEngine::useSoftwareRendering();
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
