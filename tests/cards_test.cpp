#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/sources/activity_summary.hpp"
#include "platform/desktop_appearance.hpp"
#include "tests/support/shown_window.hpp"
#include "tests/support/view_looks.hpp"
#include "tests/support/view_states.hpp"
#include "ui/views/activity_presenter.hpp"
#include "ui/views/breakdown_presenter.hpp"
#include "ui/views/resets_presenter.hpp"
#include "ui/views/theme.hpp"
#include "ui/views/view_engine.hpp"

namespace vorn {
namespace {

using namespace test;

/// The card of resets in a window, driven by the keyboard.
class CardOfResets {
public:
    explicit CardOfResets(UsageModel& model) : presenter(model) {
        m_window.setColor(themeColors({}).window);
        m_window.resize(312, 700);
        QQmlComponent component(m_hold.get(), QUrl("qrc:/qt/qml/Vorn/ResetsCard.qml"));
        m_item.reset(qobject_cast<QQuickItem*>(component.createWithInitialProperties(
            {{"presenter", QVariant::fromValue(&presenter)}, {"width", 288}, {"x", 12}, {"y", 12}})));
        EXPECT_TRUE(m_item) << component.errorString().toStdString();
        m_item->setParentItem(m_window.contentItem());
        const auto fit = [this] {
            m_item->setHeight(m_item->implicitHeight());
        };
        QObject::connect(m_item.get(), &QQuickItem::implicitHeightChanged, m_item.get(), fit);
        fit();
        m_window.show();
        m_window.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_window));
    }

    void keep(const std::string& name) { test::keepPicture(m_window.grabWindow(), name); }
    void press(Qt::Key key, int times = 1) {
        for (int i = 0; i < times; ++i) {
            QTest::keyClick(&m_window, key);
        }
    }
    /// In the place of what is there.
    void type(const char* text) {
        QTest::keySequence(&m_window, QKeySequence::SelectAll);
        for (; *text != 0; ++text) {
            QTest::keyClick(&m_window, *text);
        }
    }
    void tabTo(const std::string& name) {
        for (int i = 0; i < 30 && focusedName() != name; ++i) {
            press(Qt::Key_Tab);
        }
        ASSERT_EQ(focusedName(), name);
    }

    ResetsPresenter presenter;

private:
    DesktopAppearance m_appearance;
    ViewEngine m_engine{m_appearance};
    ViewEngine::Hold m_hold = m_engine.hold();
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_item;
};

TEST(ResetsCard, AddsAndRemovesByTheKeyboard) {
    const ScopedEnvironment american("LC_ALL", "en_US.UTF-8");
    const ScopedEnvironment zone("TZ", "UTC");
    ViewState state;
    state.model->startDemo(demo::makeDemo(demo::Scenario::watch, state.now));
    CardOfResets card(*state.model);
    card.tabTo("Add…");
    card.press(Qt::Key_Return);
    ASSERT_EQ(focusedName(), "Date");
    card.type("yesterday");
    card.press(Qt::Key_Return);
    EXPECT_EQ(card.presenter.problem().date, "Write the date like 11/23/2026");
    EXPECT_EQ(focusedName(), "Date");
    card.keep("reset-form-problem");
    card.type("11/25/2026");
    card.tabTo("Time");
    card.type("6:30 pm");
    card.press(Qt::Key_Tab);
    card.press(Qt::Key_Down, 2);
    card.press(Qt::Key_Tab);
    card.type("by mail");
    card.press(Qt::Key_Return);
    ASSERT_EQ(state.model->resetPlan().planned.size(), 1U);
    const PlannedReset added = state.model->resetPlan().planned.front();
    EXPECT_EQ(formatIso8601(added.date), "2026-11-25T18:30:00Z");
    EXPECT_EQ(added.scope, PlannedReset::Scope::week);
    EXPECT_EQ(added.note, "by mail");
    EXPECT_EQ(focusedName(), "Add…");

    card.press(Qt::Key_Return);
    card.press(Qt::Key_Escape);
    EXPECT_EQ(focusedName(), "Add…");
    card.press(Qt::Key_Tab);
    EXPECT_THAT(focusedName(), testing::StartsWith("Remove Wed, Nov 25"));
    card.press(Qt::Key_Space);
    EXPECT_THAT(state.model->resetPlan().planned, testing::IsEmpty());
}

TEST(ResetsCard, RedeemsOnlyAfterAskingTwice) {
    ViewState state;
    state.model->startDemo(demo::makeDemo(demo::Scenario::watch, state.now));
    CardOfResets card(*state.model);
    card.tabTo("Banked resets, 0");
    card.press(Qt::Key_Up, 2);
    EXPECT_EQ(state.model->resetPlan().banked, 2);
    card.tabTo("Redeem…");
    card.press(Qt::Key_Return);
    ASSERT_EQ(focusedName(), "Covers, All limits");
    card.press(Qt::Key_Return);
    EXPECT_EQ(state.model->resetPlan().banked, 2);
    card.keep("redeem");
    ASSERT_EQ(focusedName(), "Yes, redeemed");
    card.press(Qt::Key_Return);
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
    events.reserve(9);
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
