#include <QGuiApplication>
#include <QImage>
#include <QQmlContext>
#include <QQmlProperty>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/analysis/assess.hpp"
#include "core/wording/window_text.hpp"
#include "platform/desktop_appearance.hpp"
#include "tests/support/shown_window.hpp"
#include "tests/support/view_looks.hpp"
#include "tests/support/view_states.hpp"
#include "ui/charts/thinned_points.hpp"
#include "ui/charts/time_axis.hpp"
#include "ui/dashboard/dashboard_presenter.hpp"
#include "ui/dashboard/dashboard_window.hpp"
#include "ui/window/app_requests.hpp"
#include "ui/window/view_picture.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::shownWindow;
using test::ViewState;

struct PictureLook {
    DesktopAppearance::Look look;
    double pixelRatio = 1;
    int width = 1000;
};

QImage picture(UsageModel& model, const PictureLook& with) {
    DesktopAppearance appearance;
    appearance.setLook(with.look);
    ViewEngine engine(appearance);
    const auto hold = engine.hold();
    DashboardPresenter presenter(model);
    AppRequests requests;
    return pictureOf(*hold, {.view = QUrl("qrc:/qt/qml/Vorn/Dashboard/DashboardView.qml"),
                             .properties = {{"presenter", QVariant::fromValue(&presenter)},
                                            {"requests", QVariant::fromValue(&requests)},
                                            {"preferredWidth", with.width},
                                            {"pixelRatio", with.pixelRatio}},
                             .pixelRatio = with.pixelRatio});
}

TEST(DashboardView, ShowsEveryStateWithoutAWarning) {
    test::forEachViewState([](const std::string& name, UsageModel& model) {
        for (const PictureLook& with : {PictureLook{.look = {.reducedMotion = true}},
                                        {.look = {.isDark = true}, .width = 720},
                                        {.look = {.highContrast = true}, .width = 560},
                                        {.look = {.reducedMotion = true}, .width = 1900}}) {
            const QImage image = picture(model, with);
            EXPECT_EQ(image.width(), with.width);
            EXPECT_GT(image.height(), 200);
            test::keepPicture(image, name + "-" + std::to_string(with.width));
        }
    });
}

TEST(DashboardView, MirrorsAndGrowsWithoutAWarning) {
    const test::ScopedEnvironment american("LC_ALL", "en_US.UTF-8");
    const struct {
        const char* name;
        Qt::LayoutDirection direction;
        int points;
        double pixelRatio;
    } cases[] = {{"right-to-left", Qt::RightToLeft, 10, 1}, {"large-type", Qt::LeftToRight, 16, 2}};
    for (const auto& c : cases) {
        const test::ScopedType type(c.direction, c.points);
        test::forEachViewState([&c](const std::string& name, UsageModel& model) {
            test::keepPicture(picture(model, {.pixelRatio = c.pixelRatio}), name + "-" + c.name);
        });
    }
}

TEST(ThinnedPoints, KeepPeaksAndBendsAndNothingElse) {
    const PlotFrame plot{.from = 0, .to = 50'000, .top = 100, .pixels = {300, 100}};
    std::vector<QPointF> points;
    for (int i = 0; i < 50'000; ++i) {
        points.emplace_back(i, i < 30'000 ? 20 : 20 + (i - 30'000) / 1000.0);
    }
    const QList<QPointF> bent = thinnedPoints(points, plot);
    EXPECT_EQ(bent, (QList<QPointF>{{0, 20}, {30'000, 20}, {50'000, 40}}));
    points[12'345].setY(99);
    points[33'333].setY(1);
    const QList<QPointF> thinned = thinnedPoints(points, plot);
    EXPECT_LE(thinned.size(), 12);
    EXPECT_TRUE(std::ranges::is_sorted(thinned, {}, &QPointF::x));
    for (const std::size_t peak : {12'345UL, 33'333UL}) {
        EXPECT_TRUE(std::ranges::any_of(thinned, [&](const QPointF& point) {
            return std::abs(point.x() - points[peak].x()) < 50'000 / 300.0 / 2 && point.y() == points[peak].y();
        })) << peak;
    }
    points.back().rx() += 10;
    EXPECT_EQ(thinnedPoints(points, plot), thinned) << "less than can be seen";
    for (int i = 0; i < 50'000; ++i) {
        points[static_cast<std::size_t>(i)].setY(i % 2 == 0 ? 0 : 100);
    }
    EXPECT_LE(thinnedPoints(points, plot).size(), 300 * 4);
    EXPECT_THAT(thinnedPoints(points, {.to = 0, .pixels = {300, 100}}), testing::IsEmpty());
    EXPECT_THAT(thinnedPoints(points, {.to = 10}), testing::IsEmpty()) << "no room";
    EXPECT_THAT(thinnedPoints({}, plot), testing::IsEmpty());
}

LimitChartContent chartOf(const UsageWindow& window, const test::Course& course, const ResetPlan& plan = {}) {
    const MatchingSamples history = test::history(course);
    const WindowAssessment assessment = VornEngine::assess(
        window, {.history = history, .now = test::kNow, .plannedResetAt = plan.horizon(window, test::kNow)});
    return limitChartContent({.assessment = assessment, .readings = history.points(), .plan = plan, .now = test::kNow});
}

constexpr double kHour = 3600;

TEST(LimitChart, LeadsFromTheWindowsBeginningToTheProjection) {
    const auto chart = chartOf(test::reading(WindowKind::session(), 72, 75min),
                               {{-220min, 1}, {-45min, 46}, {-20min, 60}, {10min, 99}});
    EXPECT_DOUBLE_EQ(chart.span, 5 * kHour);
    EXPECT_DOUBLE_EQ(chart.now, 3.75 * kHour);
    EXPECT_DOUBLE_EQ(chart.evenPaceEnd, chart.span);
    EXPECT_EQ(chart.top, 125);
    ASSERT_EQ(chart.runs.size(), 1U);
    EXPECT_EQ(chart.runs[0].first(), QPointF(0, 0)) << "an early first reading goes back to the beginning";
    EXPECT_EQ(chart.runs[0].last(), QPointF(chart.now, 72)) << "what was read after now is not drawn";
    EXPECT_GT(chart.crossing, chart.now);
    EXPECT_LT(chart.crossing, chart.span);
    EXPECT_TRUE(chart.isProjected);
    EXPECT_NEAR(chartValue(chart, chart.crossing).value_or(0), 100, 1e-6);
    EXPECT_EQ(chartValue(chart, chart.now), 72);
    EXPECT_EQ(chartValue(chart, chart.span + 1), std::nullopt);
    EXPECT_EQ(chart.marks.ticks.size(), chart.marks.tickTexts.size());
    EXPECT_THAT(chart.summary.toStdString(), testing::HasSubstr("72% used, "));
}

TEST(LimitChart, BreaksAtAnEarlyResetAndEndsAtAPlannedOne) {
    const ResetPlan plan{.planned = {{.id = "A", .date = test::kNow + 24h, .scope = PlannedReset::Scope::week},
                                     {.id = "B", .date = test::kNow + 30h, .scope = PlannedReset::Scope::all},
                                     {.id = "C", .date = test::kNow + 2h, .scope = PlannedReset::Scope::session},
                                     {.id = "D", .date = test::kNow + 99h, .scope = PlannedReset::Scope::all}}};
    const auto chart = chartOf(test::reading(WindowKind::week(), 20, 48h),
                               {{-100h, 10}, {-60h, 80}, {-59h, 3}, {-30h, 12}, {-1h, 18}}, plan);
    ASSERT_EQ(chart.runs.size(), 2U);
    EXPECT_EQ(chart.runs[0].last().y(), 80);
    EXPECT_EQ(chart.runs[1].first(), QPointF(61 * kHour, 3));
    EXPECT_THAT(chart.marks.epochs, testing::ElementsAre(61 * kHour));
    EXPECT_EQ(chartValue(chart, 60.5 * kHour), 80) << "nothing is drawn between the two";
    EXPECT_EQ(chartValue(chart, 1), std::nullopt);
    EXPECT_TRUE(chart.isCutShort);
    EXPECT_DOUBLE_EQ(chart.evenPaceEnd, 144 * kHour);
    EXPECT_THAT(chart.marks.flags, testing::ElementsAre(144 * kHour, 150 * kHour));
    EXPECT_DOUBLE_EQ(chart.projectionEnd.x(), chart.evenPaceEnd);
}

TEST(LimitChart, SaysWhatItCannotDraw) {
    UsageWindow session = test::reading(WindowKind::session(), 0, 0s);
    session.resetsAt.reset();
    const auto idle = chartOf(session, {});
    EXPECT_EQ(idle.span, 0);
    EXPECT_EQ(idle.emptyText, "Begins with the next message");
    session.usedPercent = 64;
    const auto endless = chartOf(session, {{-30min, 60}});
    EXPECT_EQ(endless.now, endless.span) << "what was read lately";
    EXPECT_LT(endless.evenPaceEnd, 0);
    EXPECT_FALSE(endless.isProjected);
    EXPECT_EQ(endless.runs[0].size(), 2);
    const auto limited = chartOf(test::reading(WindowKind::session(), 100, 2h), {{-2h, 40}});
    EXPECT_FALSE(limited.isProjected);
    EXPECT_EQ(limited.top, 100);
    const auto tomorrow = chartOf(test::reading(WindowKind::session(), 0, 6h), {});
    EXPECT_EQ(tomorrow.now, 0) << "its reset is further away than it is long";
    EXPECT_DOUBLE_EQ(tomorrow.span, 6 * kHour);
}

TEST(TimeAxis, MarksHoursAndDaysOfTheUser) {
    const test::ScopedEnvironment zone("TZ", "UTC");
    const test::ScopedEnvironment locale("LC_ALL", "en_US.UTF-8");
    const auto hours = timeAxis(test::kNow - 30min, test::kNow + 150min);
    EXPECT_THAT(hours.ticks, testing::ElementsAre(0.5 * kHour, 1.5 * kHour, 2.5 * kHour));
    EXPECT_EQ(hours.texts[1].toStdString(), "1:00\u202fPM");
    const auto days = timeAxis(test::kNow, test::kNow + 72h);
    EXPECT_THAT(days.ticks, testing::ElementsAre(12 * kHour, 36 * kHour, 60 * kHour));
    EXPECT_EQ(days.texts.join(' ').toStdString(), "Mon Tue Wed");
    EXPECT_THAT(timeAxis(test::kNow, test::kNow).ticks, testing::IsEmpty());
    EXPECT_THAT(timeAxis(test::kNow, instantSince1970(INFINITY)).ticks, testing::IsEmpty());
    EXPECT_LE(timeAxis(test::kNow, test::kNow + 9000 * 24h).ticks.size(), 48);
}

TEST(PaceContent, MeasuresAgainstWhatCanBeSustained) {
    const auto window = test::reading(WindowKind::session(), 60, 2h);  // 20 points an hour are left
    const WindowAssessment assessment = VornEngine::assess(window, {.history = {}, .now = test::kNow});
    const std::vector<RateReading> rates{{RateReading::Horizon::now, std::nullopt},
                                         {RateReading::Horizon::hour, 40.0},
                                         {RateReading::Horizon::fiveHours, 10.0},
                                         {RateReading::Horizon::day, 0.0},
                                         {RateReading::Horizon::window, 160.0}};
    const PaceContent pace = paceContent(assessment, rates, false, test::kNow);
    EXPECT_EQ(pace.sustainable, "sustainable 20%/h");
    const auto row = [&](qsizetype at) {
        return pace.rows[at].value<PaceRow>();
    };
    EXPECT_EQ(row(0).factor, "–");
    EXPECT_EQ(row(0).reason.toStdString(), Format::whyNoRate(RateReading::Horizon::now, window.kind, false));
    EXPECT_EQ(row(1), (PaceRow{.label = "1 h", .rate = "40%/h", .factor = "×0.50", .bar = 0.5, .isTooFast = true}));
    EXPECT_EQ(row(2), (PaceRow{.label = "5 h", .rate = "10%/h", .factor = "×2.0", .bar = -0.5}));
    EXPECT_EQ(row(3), (PaceRow{.label = "24 h", .rate = "0%/h", .factor = "idle"}));
    EXPECT_EQ(row(4).bar, 1) << "full at four times the pace";
}

TEST(LimitPanel, ConcludesNothingBeforeTheReadingsAreJudged) {
    const Evidence evidence{.windows = {test::reading(WindowKind::session(), 75, 4h)}, .isJudged = false};
    const Answer answer = VornEngine::formAnswer(evidence, test::kNow);
    const LimitPanelContent panel = limitPanelContent(answer, answer.cards.front());
    EXPECT_EQ(panel.card.usedText, "75%");
    EXPECT_EQ(panel.card.verdict, "");
    EXPECT_EQ(panel.card.status, StatusForViews::Unknown);
    EXPECT_FALSE(panel.chart.isProjected);
    EXPECT_THAT(panel.pace.rows, testing::IsEmpty());
    EXPECT_EQ(panel.pace.projected, "–");
}

TEST(DashboardPresenter, ChangesOnlyThePartsThatDiffer) {
    ViewState state;
    state.model->startDemo(demo::makeDemo(demo::Scenario::atRisk, state.now));
    DashboardPresenter presenter(*state.model);
    using P = DashboardPresenter;
    const struct {
        const char* name;
        void (P::*signal)();
    } parts[] = {{"head", &P::headChanged},         {"freshness", &P::freshnessChanged},
                 {"resets", &P::resetsChanged},     {"sessionWeek", &P::sessionWeekChanged},
                 {"activity", &P::activityChanged}, {"measured", &P::measuredChanged},
                 {"printed", &P::printedChanged}};
    std::string changed;
    for (const auto& part : parts) {
        QObject::connect(&presenter, part.signal, [&changed, &part] { changed += std::string(part.name) + " "; });
    }
    const struct {
        const char* name;
        std::function<void()> act;
        const char* changed;
    } steps[] = {{"nothing", [&] { state.model->recompute(); }, ""},
                 {"a reset banked", [&] { presenter.planEditor()->setBanked(3); }, "resets "},
                 {"the week's activity", [&] { presenter.chooseActivity(PeriodForViews::Week); }, "activity "},
                 {"the day's shares", [&] { presenter.chooseMeasured(PeriodForViews::Day); }, "measured "},
                 {"the same again", [&] { presenter.chooseMeasured(PeriodForViews::Day); }, ""},
                 {"another printed period", [&] { presenter.choosePrinted(1); }, "printed "},
                 {"no such period", [&] { presenter.choosePrinted(9); }, ""}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        changed.clear();
        step.act();
        EXPECT_EQ(changed, step.changed);
    }
}

/// The window on a screen that nobody sees.
class DashboardWindowTest : public testing::Test {
protected:
    DashboardWindowTest() {
        m_state.model->startDemo(demo::makeDemo(demo::Scenario::atRisk, m_state.now));
        window.open();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(shownWindow()));
    }
    static std::vector<QQuickItem*> itemsNamed(QQuickItem* under, const char* type) {
        std::vector<QQuickItem*> found;
        for (QQuickItem* const child : under->childItems()) {
            const QString name = child->metaObject()->className();
            if (name.startsWith(QString(type) + "_QML") || name == QString("vorn::") + type) {
                found.push_back(child);
            }
            std::ranges::copy(itemsNamed(child, type), std::back_inserter(found));
        }
        return found;
    }

    /// Of a type, by what stands on it or what it is called.
    static QQuickItem* item(const char* type, const QString& text) {
        for (QQuickItem* const each : itemsNamed(shownWindow()->contentItem(), type)) {
            const auto says = [&](const char* property) {
                return each->property(property).toString().startsWith(text);
            };
            if (each->isVisible() && (says("text") || says("name") || says("title"))) {
                return each;
            }
        }
        ADD_FAILURE() << "there is no " << type << " " << text.toStdString();
        return shownWindow()->contentItem();
    }
    /// Presses it, scrolled into sight, where a share of its width lies.
    static void click(QQuickItem* on, double share = 0.5) {
        on->forceActiveFocus();
        QTest::mouseClick(shownWindow(), Qt::LeftButton, {},
                          on->mapToScene({share * on->width(), on->height() / 2}).toPoint());
    }
    static void retype(const QString& name, const char* text) {
        click(item("TextBox", name));
        QTest::keySequence(shownWindow(), QKeySequence::SelectAll);
        QTest::keyClick(shownWindow(), Qt::Key_Delete);
        for (; *text != 0; ++text) {
            QTest::keyClick(shownWindow(), *text);
        }
    }
    /// Where the line of even pace of a chart reaches 100 %, in seconds since the chart begins.
    static double evenPaceEnd(QQuickItem* chart) {
        QPointF end(-1, 0);
        const QQuickItem* const series = itemsNamed(chart, "ChartSeries").front();
        QObject* const line = qmlContext(series->childItems().front())->objectForName("evenPace");
        QMetaObject::invokeMethod(line, "at", Q_RETURN_ARG(QPointF, end), Q_ARG(int, 1));
        return end.x();
    }

    ViewState m_state;
    DesktopAppearance m_appearance;
    ViewEngine m_engine{m_appearance};
    WindowPlace m_place{.rect = {30, 40, 700, 500}};
    AppRequests m_requests;
    DashboardWindow window{*m_state.model,
                           m_requests,
                           m_engine,
                           {.load = [this] { return m_place; },
                            .save =
                                [this](const auto& place) {
                                    m_place = place;
                                }}};
};

TEST_F(DashboardWindowTest, OpensWhereItWasAndRemembersWhereItIs) {
    ASSERT_TRUE(window.isOpen());
    EXPECT_EQ(shownWindow()->geometry(), QRect(30, 40, 700, 500));
    shownWindow()->setGeometry(50, 60, 800, 550);
    QSignalSpy closed(&window, &DashboardWindow::closed);
    QTest::keyClick(shownWindow(), Qt::Key_Escape);
    EXPECT_EQ(closed.count(), 1);
    EXPECT_FALSE(window.isOpen());
    EXPECT_EQ(m_place, (WindowPlace{.rect = {50, 60, 800, 550}}));
    QCoreApplication::processEvents();
    m_place = {.rect = {90'000, 90'000, 90'000, 300}};
    window.open();
    EXPECT_EQ(shownWindow()->size(),
              QSize(shownWindow()->screen()->availableSize().width(), 300).expandedTo(shownWindow()->minimumSize()))
        << "of a screen that is gone";
    shownWindow()->close();
    EXPECT_EQ(closed.count(), 2);
    EXPECT_EQ(shownWindow(), nullptr);
}

TEST_F(DashboardWindowTest, PutsTheCardsIntoTheCellThatThreePanelsLeave) {
    shownWindow()->resize(1900, 800);
    const auto placeOf = [](const char* type, std::size_t index) {
        const QQuickItem* const found = itemsNamed(shownWindow()->contentItem(), type).at(index);
        return found->mapRectToScene({0, 0, found->width(), found->height()});
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return placeOf("LimitPanel", 1).left() > placeOf("LimitPanel", 0).right(); }));
    const QRectF cell(placeOf("LimitPanel", 1).left(), placeOf("LimitPanel", 2).top(), placeOf("LimitPanel", 1).width(),
                      placeOf("LimitPanel", 2).height());
    EXPECT_EQ(placeOf("SessionWeekCard", 0) | placeOf("ResetsCard", 0), cell);
}

TEST_F(DashboardWindowTest, ReadsOutTheChart) {
    const auto charts = itemsNamed(shownWindow()->contentItem(), "LimitChart");
    ASSERT_EQ(charts.size(), 3U);
    QQuickItem* const chart = charts.front();
    const auto name = [&] {
        return QQmlProperty::read(chart, "Accessible.name", qmlContext(chart)).toString().toStdString();
    };
    EXPECT_EQ(name(), "Session, chart");
    chart->forceActiveFocus();
    QTest::keyClick(shownWindow(), Qt::Key_Left);
    EXPECT_THAT(name(), testing::ContainsRegex("11:55 · 7[01]%"));
    QTest::keyClick(shownWindow(), Qt::Key_End);
    EXPECT_THAT(name(), testing::HasSubstr("12:00 · 72%"));
    QTest::keyClick(shownWindow(), Qt::Key_Right);
    EXPECT_THAT(name(), testing::HasSubstr("12:05 · 74%")) << "what is projected";
    QTest::keyClick(shownWindow(), Qt::Key_Tab);
    EXPECT_EQ(name(), "Session, chart");
    const auto hover = [&](double share) {
        QTest::mouseMove(shownWindow(), chart->mapToScene({share * chart->width(), chart->height() / 2}).toPoint());
    };
    EXPECT_TRUE(QTest::qWaitFor([&] {
        hover(0.3);
        hover(0.33);
        return name().find("10:") != std::string::npos;
    })) << name();
    EXPECT_TRUE(QTest::qWaitFor([&] {
        QTest::mouseMove(shownWindow(), {2, 2});
        return name() == "Session, chart";
    })) << name();
}

TEST_F(DashboardWindowTest, MovesTheEvenPaceToAResetThatIsPlannedAndBack) {
    const auto charts = itemsNamed(shownWindow()->contentItem(), "LimitChart");
    const double begins = evenPaceEnd(charts[0]);
    EXPECT_DOUBLE_EQ(begins, 5 * kHour);
    click(item("TextButton", "Add"));
    const struct {
        const char *date, *time, *problem;
    } cases[] = {{"soon", "12:30", "Write the date like 2026-11-23"},
                 {"2026-11-22", "noon", "Write the time like 13:00"},
                 {"2026-11-22", "11:59", "This has passed; a planned reset lies ahead"},
                 {"2026-11-21", "12:30", "This has passed; a planned reset lies ahead"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.problem);
        retype("Date", c.date);
        retype("Time", c.time);
        click(item("TextButton", "Add reset"));
        EXPECT_TRUE(item("DetailLabel", c.problem)->isVisible());
        EXPECT_DOUBLE_EQ(evenPaceEnd(charts[0]), begins);
    }
    retype("Date", "2026-11-22");
    retype("Time", "12:30");
    click(item("TextButton", "Add reset"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(evenPaceEnd(charts[0]) - 3.5 * kHour) < 1; }))
        << evenPaceEnd(charts[0]);
    click(item("IconButton", "Remove"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(evenPaceEnd(charts[0]) - begins) < 1; }));
}

TEST_F(DashboardWindowTest, SwitchesWhatTheStripAndTheBreakdownSpan) {
    const QQuickItem* const bars = itemsNamed(shownWindow()->contentItem(), "ActivityBars").front();
    const auto columns = [&] {
        return bars->property("bars").value<QList<double>>().size();
    };
    EXPECT_EQ(columns(), 144);
    click(item("Segments", "Time shown"), 0.75);
    EXPECT_EQ(columns(), 84);
    const auto projects = [&] {
        return item("RankedBars", "Projects")->property("shares").toList();
    };
    const QVariantList hours = projects();
    click(item("Segments", "Local activity"), 0.85);
    EXPECT_NE(projects(), hours);
    QTest::keyClick(shownWindow(), Qt::Key_Left);
    QTest::keyClick(shownWindow(), Qt::Key_Left);
    EXPECT_EQ(projects(), hours);
    const auto finding = [&] {
        return itemsNamed(shownWindow()->contentItem(), "FindingRow").front()->property("finding");
    };
    const QVariant day = finding();
    click(item("Segments", "Breakdown of Claude Code"), 0.75);
    EXPECT_NE(finding(), day);
}

TEST_F(DashboardWindowTest, AsksForWhatItsMenuAndButtonsSay) {
    const QSignalSpy exported(&m_requests, &AppRequests::exportTable);
    const QSignalSpy settings(&m_requests, &AppRequests::openSettings);
    shownWindow()->resize(1000, 700);
    const auto buttons = itemsNamed(shownWindow()->contentItem(), "IconButton");
    ASSERT_EQ(buttons.size(), 2U);
    QMetaObject::invokeMethod(buttons[0], "triggered");
    EXPECT_EQ(settings.count(), 1);
    buttons[1]->forceActiveFocus();
    const auto* const hint = itemsNamed(buttons[1], "Hint").front()->property("bubble").value<QQuickItem*>();
    EXPECT_TRUE(QTest::qWaitFor([&] { return hint->isVisible(); }));
    EXPECT_GT(hint->y(), buttons[1]->mapToScene({0, 0}).y()) << "above, it would touch the window's edge";
    QTest::keyClick(shownWindow(), Qt::Key_Return);
    QTest::keyClick(shownWindow(), Qt::Key_Escape);
    EXPECT_TRUE(window.isOpen()) << "Escape closes the menu first";
    EXPECT_TRUE(buttons[1]->hasActiveFocus());
    QTest::keyClick(shownWindow(), Qt::Key_Return);
    QTest::keyClick(shownWindow(), Qt::Key_Down);
    QTest::keyClick(shownWindow(), Qt::Key_Return);
    ASSERT_EQ(exported.count(), 1);
    EXPECT_EQ(exported[0][0].value<AppRequests::Table>(), AppRequests::History);
    EXPECT_EQ(exported[0][1].value<AppRequests::TableFormat>(), AppRequests::Json);
}

}  // namespace
}  // namespace vorn
