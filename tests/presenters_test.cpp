#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "demo/demo_answer.hpp"
#include "platform/desktop_appearance.hpp"
#include "tests/support/view_states.hpp"
#include "ui/controls/theme.hpp"
#include "ui/popover/popover_placement.hpp"
#include "ui/popover/popover_presenter.hpp"

namespace vorn {
namespace {

using namespace test;

const WindowKind kSession = WindowKind::session();

WindowAssessment atRisk() {
    return {.window = reading(kSession, 72, 75min),
            .elapsedFraction = 0.75,
            .evenPacePercent = 75,
            .ratePerHour = 35,
            .rateBasis = RateBasis::localActivity,
            .projectedAtReset = 116,
            .timeToLimit = 48min,
            .timeToReset = 75min,
            .status = VornStatus::atRisk};
}

TEST(WindowCardContent, SaysHowAWindowStands) {
    WindowAssessment notStarted{.window = {.kind = kSession, .observedAt = kNow}};
    WindowAssessment unknownReset = notStarted;
    unknownReset.window.usedPercent = 104;
    unknownReset.status = VornStatus::limited;
    WindowAssessment planned{.window = reading(WindowKind::weekModel("Opus"), 44, 80h),
                             .evenPacePercent = 44.2,
                             .ratePerHour = 0.2,
                             .rateBasis = RateBasis::recent,
                             .projectedAtReset = 50,
                             .timeToReset = 80h,
                             .plannedResetAt = kNow + 30h};
    WindowAssessment broken = atRisk();
    broken.window.usedPercent = std::nan("");
    broken.ratePerHour = std::nan("");
    broken.projectedAtReset.reset();
    const struct {
        const char* name;
        WindowAssessment assessment;
        const char* used;
        double usedShare, projected, evenPace;
        int segments;
        const char *reset, *shortReset, *pace;
    } cases[] = {
        {"at risk", atRisk(), "72%", 0.72, 1, 0.75, 1, "Resets in 1h 15m · 13:15", "resets in 1h 15m",
         "35%/h from local activity · 3 points behind even pace"},
        {"not started", notStarted, "0%", 0, -1, -1, 1, "Begins with the next message", "", "No rate yet"},
        {"reset unknown", unknownReset, "104%", 1, -1, -1, 1, "Reset time not known", "", "No rate yet"},
        {"planned", planned, "44%", 0.44, 0.5, 0.442, 7, "Resets in 3d 8h · Wed 20:00", "resets in 3d 8h",
         "4.8%/day, last 24 h · on even pace"},
        {"no numbers", broken, "—%", 0, -1, 0.75, 1, "Resets in 1h 15m · 13:15", "resets in 1h 15m",
         "— from local activity · on even pace"},
    };
    const ScopedEnvironment zone("TZ", "UTC");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const WindowCardContent card = windowCardContent(c.assessment, true, kNow);
        EXPECT_EQ(card.usedText.toStdString(), c.used);
        EXPECT_DOUBLE_EQ(card.used, c.usedShare);
        EXPECT_DOUBLE_EQ(card.projected, c.projected);
        EXPECT_DOUBLE_EQ(card.evenPace, c.evenPace);
        EXPECT_EQ(card.segments, c.segments);
        EXPECT_EQ(card.reset.toStdString(), c.reset);
        EXPECT_EQ(card.shortReset.toStdString(), c.shortReset);
        EXPECT_EQ(card.pace.toStdString(), c.pace);
        EXPECT_EQ(card.plannedReset.isEmpty(), !c.assessment.plannedResetAt);
    }
    EXPECT_EQ(windowCardContent(atRisk(), true, kNow).spoken.toStdString(),
              "Session, at risk, 72% used, Limit in about 48 minutes at this pace, resets in 1 hour 15 minutes, at "
              "13:15, 35%/h from local activity, 3 points behind even pace");

    const WindowCardContent unjudged = windowCardContent(atRisk(), false, kNow);
    EXPECT_EQ(unjudged.status, StatusForViews::Unknown);
    EXPECT_EQ(unjudged.statusText + unjudged.verdict + unjudged.pace, "");
    EXPECT_EQ(unjudged.projected, -1);
    EXPECT_EQ(unjudged.spoken.toStdString(), "Session, 72% used, resets in 1 hour 15 minutes, at 13:15");
}

TEST(WindowListModel, KeepsTheRowsOfWindowsThatStay) {
    WindowListModel list;
    const QAbstractItemModelTester tester(&list, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const auto rows = [](std::initializer_list<std::pair<WindowKind, double>> windows) {
        std::vector<WindowListModel::Row> result;
        for (const auto& [kind, used] : windows) {
            result.push_back({.card = {.kind = kind, .used = used}});
        }
        return result;
    };
    const WindowKind week = WindowKind::week();
    const WindowKind opus = WindowKind::weekModel("Opus");
    const WindowKind sonnet = WindowKind::weekModel("Sonnet");
    const struct {
        const char* name;
        std::vector<WindowListModel::Row> rows;
        int inserted, removed, changed;
    } steps[] = {
        {"first", rows({{kSession, 0.1}, {week, 0.2}, {sonnet, 0.3}}), 3, 0, 0},
        {"the same", rows({{kSession, 0.1}, {week, 0.2}, {sonnet, 0.3}}), 0, 0, 0},
        {"one changes", rows({{kSession, 0.1}, {week, 0.25}, {sonnet, 0.3}}), 0, 0, 1},
        {"one comes between", rows({{kSession, 0.1}, {week, 0.25}, {opus, 0}, {sonnet, 0.3}}), 1, 0, 0},
        {"first and last go", rows({{week, 0.25}, {opus, 0}}), 0, 2, 0},
        {"all others", rows({{kSession, 0.1}, {sonnet, 0.3}}), 2, 2, 0},
        {"none", {}, 0, 1, 0},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        const QSignalSpy inserted(&list, &WindowListModel::rowsInserted);
        const QSignalSpy removed(&list, &WindowListModel::rowsRemoved);
        const QSignalSpy changed(&list, &WindowListModel::dataChanged);
        list.setRows(step.rows);
        EXPECT_EQ(inserted.size(), step.inserted);
        EXPECT_EQ(removed.size(), step.removed);
        EXPECT_EQ(changed.size(), step.changed);
        ASSERT_EQ(list.rowCount({}), static_cast<int>(step.rows.size()));
        for (int row = 0; row < list.rowCount({}); ++row) {
            EXPECT_EQ(list.data(list.index(row), WindowListModel::Card).value<WindowCardContent>(),
                      step.rows[static_cast<std::size_t>(row)].card);
        }
    }
}

TEST(HeadContent, SpeaksOfTheWindowThatMattersMost) {
    const auto contentOf = [](demo::Scenario scenario) {
        return headContent(demo::answer(demo::makeDemo(scenario, kNow), kNow));
    };
    const auto risk = contentOf(demo::Scenario::atRisk);
    EXPECT_EQ(risk.mark, RingItem::Arrow);
    EXPECT_LT(risk.angle, 0);
    EXPECT_EQ(risk.status, StatusForViews::AtRisk);
    EXPECT_TRUE(risk.factor.startsWith("↓0.")) << risk.factor.toStdString();
    EXPECT_EQ(risk.spoken, risk.headline + ". " + risk.reason + ".");

    // Another window may have room: a person who cannot work must not read that.
    const auto limited = contentOf(demo::Scenario::limited);
    EXPECT_EQ(limited.headline, "Limit reached — pause until it resets");
    EXPECT_EQ(limited.mark, RingItem::Stop);
    EXPECT_EQ(limited.status, StatusForViews::Limited);
    EXPECT_EQ(limited.factor, "");
    EXPECT_EQ(limited.used, 100);

    const Evidence unjudged{.windows = {reading(kSession, 100, 1h)}, .isJudged = false};
    EXPECT_EQ(headContent(VornEngine::formAnswer(unjudged, kNow)),
              (HeadContent{.headline = "Reading your usage…", .spoken = "Reading your usage…"}));
}

TEST(FreshnessContent, TellsWhatThereIsAndHowFreshItIs) {
    const ScopedEnvironment zone("TZ", "UTC");
    using Stage = StageForViews::Stage;
    const struct {
        const char* state;
        Stage stage;
        const char *title, *text, *problem, *remedy;
        bool needsClaude, canRetry;
    } cases[] = {
        {"starting", Stage::Starting, "Reading your usage…", "Asking claude /usage…", "", "", false, false},
        {"probing", Stage::Ready, "", "Asking claude /usage…", "", "", false, false},
        {"failed", Stage::Failed, "No reading yet", "", "", "", true, false},
        {"failed-at-length", Stage::Failed, "No reading yet", "Checked 12:00 · claude /usage", "", "", false, false},
        {"no-limits", Stage::NoLimits, "Connected, no limits yet", "Checked 12:00 · claude /usage", "", "", false,
         false},
        {"stale", Stage::Ready, "", "Updated 12:00 · claude /usage", "claude /usage didn't answer in time.",
         "The last figures stay. Vorn asks again by itself.", false, true},
        {"stale-at-length", Stage::Ready, "", "Updated Sun 12:00 · claude /usage",
         "Vorn couldn't read the /usage output. Claude Code may have changed its format.",
         "The last figures stay. Vorn asks again by itself.", false, true},
        {"at-risk", Stage::Ready, "", "Demonstration, invented figures", "", "", false, false},
    };
    const auto states = allViewStates();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.state);
        ViewState state;
        std::ranges::find(states, c.state, &NamedViewState::name)->enter(state);
        const auto content = freshnessContent(state.model->answer());
        EXPECT_EQ(content.stage, c.stage);
        EXPECT_EQ(content.title.toStdString(), c.title);
        EXPECT_EQ(content.text.toStdString(), c.text);
        EXPECT_EQ(content.problem.toStdString(), c.problem);
        EXPECT_EQ(content.remedy.toStdString(), c.remedy);
        EXPECT_EQ(content.needsClaude, c.needsClaude);
        EXPECT_EQ(content.canRetry, c.canRetry);
    }
}

TEST(PopoverPresenter, TellsOnlyOfThePartsThatChange) {
    ViewState state;
    state.probe(ClientAnswer{.windows = {reading(kSession, 38, 2h)}});
    const PopoverPresenter presenter(*state.model);
    const QSignalSpy head(&presenter, &PopoverPresenter::headChanged);
    const QSignalSpy freshness(&presenter, &PopoverPresenter::freshnessChanged);
    state.model->recompute();
    EXPECT_EQ(freshness.size(), 0);
    state.model->probe();
    EXPECT_TRUE(presenter.freshness().isAsking);
    EXPECT_EQ(presenter.freshness().text, "Asking claude /usage…");
    EXPECT_EQ(freshness.size(), 1);
    EXPECT_EQ(head.size(), 0);
}

TEST(PopoverPlacement, StaysBesideItsAnchorAndOnTheScreen) {
    using Kind = PopoverAnchor::Kind;
    const QRect full(0, 0, 1280, 800);
    const QRect second(1280, -200, 1000, 1000);
    const QSize size(360, 500);
    const struct {
        const char* name;
        PopoverAnchor anchor;
        QRect screen, available;
        QPoint expected;
    } cases[] = {
        {"panel above", {Kind::trayCell, {900, 0, 24, 24}}, full, {0, 24, 1280, 776}, {731, 32}},
        {"panel below", {Kind::trayCell, {900, 776, 24, 24}}, full, {0, 0, 1280, 776}, {731, 268}},
        {"panel above, cell in the corner", {Kind::trayCell, {1256, 0, 24, 24}}, full, {0, 24, 1280, 776}, {912, 32}},
        {"panel below, cell at the left", {Kind::trayCell, {0, 776, 24, 24}}, full, {0, 0, 1280, 776}, {8, 268}},
        {"panel at the left", {Kind::trayCell, {0, 700, 24, 24}}, full, {24, 0, 1256, 800}, {32, 292}},
        {"panel at the right", {Kind::trayCell, {1256, 300, 24, 24}}, full, {0, 0, 1256, 800}, {888, 61}},
        {"panel that reserves nothing", {Kind::trayCell, {900, 4, 24, 24}}, full, full, {731, 34}},
        {"second monitor, reaching above the first",
         {Kind::trayCell, {2240, -200, 24, 24}},
         second,
         {1280, -176, 1000, 976},
         {1912, -168}},
        {"cursor in the panel", PopoverAnchor::atCursor({1270, 10}), full, {0, 24, 1280, 776}, {912, 32}},
        {"no anchor", PopoverAnchor::inCorner({1500, 300}), second, {1280, -176, 1000, 976}, {1912, -168}},
        {"screen too small", PopoverAnchor::inCorner({10, 10}), {0, 0, 320, 240}, {0, 0, 320, 240}, {8, 8}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QRect rect = popoverRect(c.anchor, size, c.screen, c.available);
        EXPECT_EQ(rect.size(), size);
        EXPECT_EQ(rect.x(), c.expected.x());
        EXPECT_EQ(rect.y(), c.expected.y());
    }
}

/// Relative luminance as accessibility guidelines define it.
double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first / second, second / first);
}

TEST(Theme, IsReadableOnEverySurface) {
    constexpr double kText = 4.5;
    constexpr double kMark = 3;
    using enum StatusForViews::Status;
    for (const bool isDark : {false, true}) {
        for (const bool highContrast : {false, true}) {
            SCOPED_TRACE(testing::Message() << "dark " << isDark << ", high contrast " << highContrast);
            const ThemeColors colors = themeColors({.isDark = isDark, .highContrast = highContrast});
            for (const QColor& surface : {colors.window, colors.surface, colors.sunken}) {
                for (const QColor& text : {colors.text, colors.secondText, colors.thirdText, colors.accent}) {
                    EXPECT_GE(contrast(text, surface), kText) << text.name().toStdString();
                }
            }
            for (const auto status : {Comfortable, Watch, AtRisk, Limited}) {
                SCOPED_TRACE(status);
                const QColor color = colors.status(status);
                EXPECT_GE(contrast(color, colors.surface), kText);
                EXPECT_GE(contrast(color, colors.window), kText);
                EXPECT_GE(contrast(color, colors.tint(status)), kText);
                EXPECT_GE(contrast(colors.secondText, colors.tint(status)), kText);
            }
            EXPECT_GE(contrast(colors.textOnAccent, colors.accent), kText);
            EXPECT_GE(contrast(colors.fieldLine, colors.surface), kMark);
            EXPECT_GE(contrast(colors.fieldLine, colors.window), kMark);
        }
    }
}

TEST(Theme, GrowsWithTheSystemsFontWithinReason) {
    EXPECT_EQ(themeSizes(13).popoverWidth, 360);
    EXPECT_EQ(themeSizes(26).popoverWidth, 720);
    EXPECT_EQ(themeSizes(26).hair, 1);
    EXPECT_EQ(themeSizes(-1), themeSizes(1));  // a font that has no size
    EXPECT_EQ(themeSizes(1e9), themeSizes(1000));
}

}  // namespace
}  // namespace vorn
