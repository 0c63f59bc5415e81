#include "ui/tray/menu_bar_glyph.hpp"

#include <QGuiApplication>
#include <QPainter>
#include <array>

#include <gtest/gtest.h>

#include "demo/demo_answer.hpp"
#include "tests/support/readings.hpp"
#include "ui/tray/cell_text.hpp"
#include "ui/tray/glyph_text.hpp"

namespace vorn {

namespace {

using namespace test;

std::string describe(const MenuBarPart& part) {
    const auto* text = std::get_if<TextPart>(&part);
    return text != nullptr ? text->text : "ring " + std::get<RingPart>(part).kind.key();
}

Answer answerOf(std::vector<UsageWindow> windows) {
    return VornEngine::formAnswer({.windows = std::move(windows)}, kNow);
}

RingPart ringPart(const WindowKind& kind, VornStatus status, double used) {
    WindowAssessment assessment{.window = reading(kind, used, 2h), .evenPacePercent = 48};
    assessment.status = status;
    return {.kind = kind,
            .assessment = assessment,
            .steer = VornSteer{.kind = kind, .factor = status == VornStatus::limited ? 0 : 0.6}};
}

class MenuBarGlyphTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        static const QGuiApplication application(count, arguments);
    }
};

TEST_F(MenuBarGlyphTest, TurnsItemsIntoParts) {
    using enum MenuBarItem;
    const UsageWindow session = reading(WindowKind::session(), 42.4, 90min);
    const UsageWindow week = reading(WindowKind::week(), 61, 80h);
    UsageWindow endless = session;
    endless.resetsAt.reset();
    const std::string tightest = "ring session";
    const struct {
        const char* name;
        std::vector<UsageWindow> windows;
        std::vector<MenuBarItem> items;
        std::vector<std::string> parts;
    } cases[] = {
        {"nothing chosen", {session}, {}, {tightest}},
        {"nothing known",
         {},
         {sessionPercent, sessionReset, weekPercent, weekReset, paceFactor, sessionsLeft},
         {tightest}},
        {"rings stay", {}, {weekRing, sessionRing}, {"ring week", "ring session"}},
        {"in their order",
         {session, week},
         {weekReset, sessionPercent, weekPercent, sessionReset},
         {"3d 8h", "42%", "61%", "1h 30m"}},
        {"no reset known", {endless}, {sessionPercent, sessionReset, weekReset}, {"42%"}},
        {"no ratio yet", {session, week}, {sessionsLeft, weekPercent}, {"61%"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> parts;
        for (const MenuBarPart& part : MenuBarGlyph::parts(c.items, answerOf(c.windows))) {
            parts.push_back(describe(part));
        }
        EXPECT_EQ(parts, c.parts);
    }
}

TEST_F(MenuBarGlyphTest, GivesEachRingItsOwnSteer) {
    const Answer answer = demo::answer(demo::makeDemo(demo::Scenario::atRisk, kNow), kNow);
    const auto all = MenuBarGlyph::parts(kAllMenuBarItems, answer);
    ASSERT_EQ(all.size(), kAllMenuBarItems.size());
    EXPECT_EQ(all[0], MenuBarPart(RingPart{answer.steer->kind, *answer.steerAssessment(), answer.steer}));
    EXPECT_EQ(all[4], MenuBarPart(RingPart{WindowKind::week(), *answer.week(), answer.week()->steer()}));
    EXPECT_EQ(std::get<TextPart>(all[7]).item, MenuBarItem::paceFactor);

    const MenuBarPart empty = RingPart{.kind = WindowKind::session(), .assessment = {}, .steer = {}};
    EXPECT_EQ(MenuBarGlyph::parts(std::array{MenuBarItem::tightestRing}, answerOf({})), std::vector{empty});
}

TEST_F(MenuBarGlyphTest, SaysNothingAboutUseInTheStyleThatOnlySteers) {
    const RingPart part = ringPart(WindowKind::week(), VornStatus::watch, 61);
    EXPECT_EQ(MenuBarGlyph::ring(part, GlyphStyle::steer, 22).used, std::nullopt);
    EXPECT_EQ(MenuBarGlyph::ring(part, GlyphStyle::usage, 22).used, 61);
    EXPECT_EQ(MenuBarGlyph::ring(part, GlyphStyle::usage, 22).center, DayRing::Center(DayRing::EvenPace{48}));
    EXPECT_TRUE(MenuBarGlyph::ring(part, GlyphStyle::usageAndSteer, 22).segmented);
}

TEST_F(MenuBarGlyphTest, BreaksTextsForCells) {
    using Lines = std::vector<CellText::Line>;
    const struct {
        const char* text;
        Lines lines;
    } cases[] = {
        {"72%", {{u"72"_qs, u"%"_qs}}},
        {"100%", {{u"100"_qs, {}}, {{}, u"%"_qs}}},
        {"1h 15m", {{u"1h"_qs, {}}, {u"15m"_qs, {}}}},
        {"2h", {{u"2h"_qs, {}}}},
        {"45m", {{u"45"_qs, {}}, {{}, u"m"_qs}}},
        {"<1m", {{u"<1"_qs, {}}, {{}, u"m"_qs}}},
        {"↓0.6×", {{u"↓"_qs, {}}, {u"0.6×"_qs, {}}}},
        {"→", {{u"→"_qs, {}}}},
        {"3.4×5h", {{u"3.4"_qs, {}}, {u"×5h"_qs, {}}}},
        {"∞×5h", {{u"∞"_qs, {}}, {u"×5h"_qs, {}}}},
        {"—", {{u"—"_qs, {}}}},
        {"", {{}}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CellText::lines(c.text), Lines(c.lines)) << c.text;
    }
}

/// The part of the image that is not empty.
QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            ink |= image.pixelColor(x, y).alpha() > 32 ? QRect(x, y, 1, 1) : QRect();
        }
    }
    return ink;
}

TEST_F(MenuBarGlyphTest, FillsACellWithItsTextAndNoMore) {
    for (const char* text : {"72%", "100%", "1h 15m", "23h 59m", "6d 23h", "45m", "↓0.6×", "↑", "■", "12×5h", "∞×5h"}) {
        for (const int side : {16, 22, 24, 32, 48, 96}) {
            SCOPED_TRACE(testing::Message() << text << " in " << side);
            const QImage cell = MenuBarGlyph::cell(TextPart{.item = MenuBarItem::sessionPercent, .text = text},
                                                   {.palette = MenuBarGlyph::Palette::onDark()}, side);
            ASSERT_EQ(cell.size(), QSize(side, side));
            const QRect ink = inkOf(cell);
            const int margin = side < 20 ? 0 : side / 22;
            EXPECT_TRUE(QRect(margin, margin, side - 2 * margin, side - 2 * margin).contains(ink));
            EXPECT_GE(std::max(ink.width(), ink.height()), side * 0.37);
            EXPECT_NEAR(ink.center().x(), (side - 1) / 2.0, side * 0.08 + 1);
        }
    }
}

TEST_F(MenuBarGlyphTest, CountsWithoutMoving) {
    const GlyphText text({.pixelSize = 13});
    EXPECT_EQ(text.width(u"11h 11m"), text.width(u"20h 48m"));
    const std::vector<MenuBarPart> narrow{TextPart{MenuBarItem::sessionPercent, "11%"}};
    const std::vector<MenuBarPart> wide{TextPart{MenuBarItem::sessionPercent, "48%"}};
    const MenuBarGlyph::Look look{.palette = MenuBarGlyph::Palette::onLight()};
    EXPECT_EQ(MenuBarGlyph::image(narrow, look, 22).size(), MenuBarGlyph::image(wide, look, 22).size());
    EXPECT_EQ(MenuBarGlyph::image(narrow, look, 44).height(), 44);
}

TEST_F(MenuBarGlyphTest, TintsOnlyRingsThatNeedIt) {
    const auto palette = MenuBarGlyph::Palette::onDark();
    const struct {
        VornStatus status;
        bool tint;
        QColor color;
    } cases[] = {
        {VornStatus::watch, true, palette.foreground},
        {VornStatus::atRisk, true, palette.atRisk},
        {VornStatus::limited, true, palette.limited},
        {VornStatus::limited, false, palette.foreground},
    };
    for (const auto& c : cases) {
        const std::vector<MenuBarPart> parts{TextPart{MenuBarItem::sessionPercent, "42%"},
                                             ringPart(WindowKind::session(), c.status, 100)};
        const MenuBarGlyph::Look look{.tint = c.tint, .palette = palette};
        // In the middle of the ring's line, at three o'clock.
        EXPECT_EQ(MenuBarGlyph::cell(parts[1], look, 36).pixelColor(30, 18), c.color) << label(c.status);
        EXPECT_EQ(MenuBarGlyph::isTemplate(parts, look), c.color == palette.foreground) << label(c.status);
    }
}

/// Every style, window and status at sizes of trays, in rows.
QImage ringSheet() {
    constexpr int column = 48;
    QImage sheet(18 * column, 16 + 22 + column, QImage::Format_RGB32);
    sheet.fill(QColor(0x25, 0x28, 0x2D));
    QPainter painter(&sheet);
    int y = 0;
    for (const int side : {16, 22, column}) {
        int x = 0;
        for (const GlyphStyle style : kAllGlyphStyles) {
            const MenuBarGlyph::Look look{.style = style, .palette = MenuBarGlyph::Palette::onDark()};
            for (const WindowKind& kind : {WindowKind::session(), WindowKind::week()}) {
                for (const RingPart& part :
                     {RingPart{.kind = kind, .assessment = {}, .steer = {}}, ringPart(kind, VornStatus::atRisk, 72),
                      ringPart(kind, VornStatus::limited, 100)}) {
                    painter.drawImage(x, y, MenuBarGlyph::cell(part, look, side));
                    x += column;
                }
            }
        }
        y += side;
    }
    return sheet;
}

TEST_F(MenuBarGlyphTest, PaintsRingsAsTheyWere) {
    const QString file = QStringLiteral(VORN_GLYPH_REFERENCES "/rings.png");
    const QImage sheet = ringSheet();
    if (qEnvironmentVariableIsSet("VORN_UPDATE_REFERENCES")) {
        ASSERT_TRUE(sheet.save(file));
    }
    const QImage reference = QImage(file).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(sheet.size(), reference.size());
    int different = 0;
    for (int y = 0; y < sheet.height(); ++y) {
        for (int x = 0; x < sheet.width(); ++x) {
            const QColor is = sheet.pixelColor(x, y);
            const QColor was = reference.pixelColor(x, y);
            different += std::abs(is.red() - was.red()) + std::abs(is.green() - was.green()) > 40 ? 1 : 0;
        }
    }
    // Another version's antialiasing, but not a ring that turns the other way.
    EXPECT_LT(different, sheet.width() * sheet.height() / 500);
}

}  // namespace
}  // namespace vorn
