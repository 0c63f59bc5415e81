#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "demo/demo_answer.hpp"
#include "platform/desktop_appearance.hpp"
#include "tests/support/shown_window.hpp"
#include "tests/support/view_looks.hpp"
#include "tests/support/view_states.hpp"
#include "ui/controls/theme.hpp"
#include "ui/dashboard/dashboard_presenter.hpp"
#include "ui/window/view_engine.hpp"

namespace vorn {
namespace {

using namespace test;

/// The card of resets in a window, driven by the keyboard.
class CardOfResets {
public:
    explicit CardOfResets(UsageModel& model) : presenter(model) {
        m_window.setColor(themeColors({}).window);
        m_window.resize(312, 700);
        QQmlComponent component(m_hold.get(), QUrl("qrc:/qt/qml/Vorn/Dashboard/ResetsCard.qml"));
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

    DashboardPresenter presenter;

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
    EXPECT_EQ(card.presenter.planEditor()->problem().date, "Write the date like 11/23/2026");
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
    const auto measured = [](const std::vector<ActivityEvent>& replies) {
        return measuredContent({.now = kNow + 1min, .activity = std::make_shared<ActivitySummary>(replies)},
                               PeriodForViews::FiveHours);
    };
    const QVariantList projects = measured(events).projects;
    ASSERT_EQ(projects.size(), 7);
    EXPECT_TRUE(projects[6].value<RankedShare>().isRest);
    EXPECT_FALSE(projects[5].value<RankedShare>().isRest);
    EXPECT_EQ(measured({}).nothing, "No replies in the last 5 hours.");

    const UsageInsights insights{.periods = {{.label = "Last 24h",
                                              .requests = 1,
                                              .sessions = 2,
                                              .findings = {{71, "check models · it · pays"}, {5, "Plain"}}}}};
    const auto printed = printedContent(insights, 9);
    const auto finding = [&](qsizetype at) {
        return printed.findings[at].value<PrintedFinding>();
    };
    EXPECT_EQ(printed.period, 0);
    EXPECT_EQ(printed.heading, "Claude Code · 1 request · 2 sessions");
    EXPECT_EQ(finding(0).title, "Check models");
    EXPECT_EQ(finding(0).detail, "it · pays");
    EXPECT_EQ(finding(1).detail, "");
    EXPECT_NE(printedContent({}, 0).nothing, "");
}

TEST(Activity, IsAlignedWithTheClockAndReadOut) {
    const ScopedEnvironment zone("TZ", "Asia/Kolkata");
    EXPECT_EQ(activityContent({}, PeriodForViews::Day).nothing, "Reading Claude Code's transcripts…");
    EXPECT_EQ(activityContent({.usesActivity = false}, PeriodForViews::Day).nothing,
              "Local activity is switched off in the settings.");
    const Answer answer = demo::answer(demo::makeDemo(demo::Scenario::watch, kNow), kNow);
    const auto day = activityContent(answer, PeriodForViews::Day);
    EXPECT_EQ(day.buckets.size(), 144U);
    EXPECT_EQ(day.marks.size(), 8);
    const auto week = activityContent(answer, PeriodForViews::Week);
    EXPECT_EQ(week.buckets.size(), 84U);
    EXPECT_EQ(week.markTexts.size(), 7);
    EXPECT_GT(week.buckets.back().start + week.width, kNow);
    EXPECT_THAT(day.describe(143).toStdString(), testing::HasSubstr("17:30 – 17:40"));
    EXPECT_EQ(day.describe(144), "");
}

}  // namespace
}  // namespace vorn
