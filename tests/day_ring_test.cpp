#include "ui/tray/day_ring.hpp"

#include <QPainterPath>
#include <cmath>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

namespace vorn {
namespace {

using namespace DayRing;

/// All lengths of the ring are whole multiples of u = 2 then.
constexpr double kSide = 36;
constexpr double kU = 2;
/// Along an arc, which Qt makes of curves.
constexpr double kAlongArc = 0.2;

QPointF onRing(double degrees) {
    const double angle = (degrees - 90) * std::numbers::pi / 180;
    return QPointF(18, 18) + 6.4 * kU * QPointF(std::cos(angle), std::sin(angle));
}

void expectPoint(const QPointF& actual, const QPointF& expected, double tolerance = 0.01) {
    EXPECT_NEAR(actual.x(), expected.x(), tolerance);
    EXPECT_NEAR(actual.y(), expected.y(), tolerance);
}

void expectStroke(const Mark& mark, double widthInU, Qt::PenCapStyle cap, double alpha) {
    const auto* stroke = std::get_if<Mark::Stroke>(&mark.style);
    ASSERT_NE(stroke, nullptr);
    EXPECT_NEAR(stroke->width, widthInU * kU, 1e-9);
    EXPECT_EQ(stroke->cap, cap);
    EXPECT_EQ(mark.alpha, alpha);
}

/// An arc that runs clockwise on the ring.
void expectArc(const Mark& mark, double from, double to, Qt::PenCapStyle cap, double alpha) {
    expectStroke(mark, 2.2, cap, alpha);
    expectPoint(mark.path.elementAt(0), onRing(from));
    expectPoint(mark.path.pointAtPercent(0.5), onRing((from + to) / 2), kAlongArc);
    expectPoint(mark.path.currentPosition(), onRing(to));
    EXPECT_NEAR(mark.path.length(), (to - from) * std::numbers::pi / 180 * 6.4 * kU, kAlongArc);
}

TEST(DayRing, DrawsTheSessionAsOneArc) {
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char* name;
        std::optional<double> used;
        double sweep;  // 0: no arc of use
    } cases[] = {
        {"unknown", std::nullopt, 0},  {"none", 0, 0},
        {"negative", -5, 0},           {"not a number", std::nan(""), 0},
        {"a quarter", 25, 90},         {"nearly all", 99.8, 359.28},
        {"all but a hair", 99.9, 360}, {"over the limit", 130, 360},
        {"unbounded", infinity, 360},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto all = marks({.side = kSide, .used = c.used});
        ASSERT_EQ(all.size(), c.sweep > 0 ? 2U : 1U);
        expectArc(all[0], 0, 360, Qt::RoundCap, 0.3);
        if (c.sweep > 0) {
            expectArc(all[1], 0, c.sweep, Qt::RoundCap, 1);
        }
    }
}

TEST(DayRing, DrawsWeeksInSevenSegments) {
    constexpr double segment = 360.0 / 7;
    const struct {
        std::optional<double> used;
        int begun;       // segments with use in them
        double lastEnd;  // degrees
    } cases[] = {
        {std::nullopt, 0, 0}, {1, 0, 0},  // still within the first gap
        {2, 1, 7.2},          {14, 1, segment - 4.5},
        {50, 4, 180},         {100, 7, 360 - 4.5},
        {250, 7, 360 - 4.5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.used.value_or(-1));
        const auto all = marks({.side = kSide, .used = c.used, .segmented = true});
        ASSERT_EQ(all.size(), 7U + static_cast<unsigned>(c.begun));
        std::size_t next = 0;
        for (int i = 0; i < 7; ++i) {
            const double from = i * segment + 4.5;
            const double to = (i + 1) * segment - 4.5;
            expectArc(all[next++], from, to, Qt::FlatCap, 0.3);
            if (i < c.begun) {
                expectArc(all[next++], from, i + 1 == c.begun ? c.lastEnd : to, Qt::FlatCap, 1);
            }
        }
    }
}

TEST(DayRing, PutsTheCentreLast) {
    const auto centreOf = [](const Center& center) {
        return marks({.side = kSide, .used = 40, .center = center}).at(2);
    };
    EXPECT_EQ(marks({.side = kSide, .used = 40, .center = None{}}).size(), 2U);

    const struct {
        double percent;
        QPointF direction;
    } hands[] = {{25, {1, 0}}, {50, {0, 1}}, {-3, {0, -1}}, {140, {0, -1}}};
    for (const auto& hand : hands) {
        const Mark mark = centreOf(EvenPace{hand.percent});
        expectStroke(mark, 1.5, Qt::RoundCap, 1);
        expectPoint(mark.path.elementAt(0), QPointF(18, 18) + 1.6 * kU * hand.direction);
        expectPoint(mark.path.elementAt(1), QPointF(18, 18) + 4.1 * kU * hand.direction);
    }

    const Mark arrow = centreOf(Arrow{90});  // straight up
    expectStroke(arrow, 1.6, Qt::RoundCap, 1);
    const double barb = 2.4 * kU * std::numbers::sqrt2 / 2;
    const QPointF tip(18, 18 - 3.4 * kU);
    const QPointF expected[] = {{18, 18 + 3.4 * kU}, tip, tip + QPointF(-barb, barb), tip, tip + QPointF(barb, barb)};
    ASSERT_EQ(arrow.path.elementCount(), 5);
    for (int i = 0; i < 5; ++i) {
        expectPoint(arrow.path.elementAt(i), expected[i]);
    }

    const Mark stop = centreOf(Stop{});
    EXPECT_TRUE(std::holds_alternative<Mark::Fill>(stop.style));
    EXPECT_EQ(stop.path.boundingRect(), QRectF(13, 13, 10, 10));
    EXPECT_FALSE(stop.path.contains(QPointF(13.2, 13.2))) << "its corners are round";

    const Mark dash = centreOf(Dash{});
    expectStroke(dash, 1.6, Qt::RoundCap, 0.45);
    EXPECT_EQ(dash.path.elementAt(0), QPointF(18 - 2.6 * kU, 18));
    EXPECT_EQ(dash.path.elementAt(1), QPointF(18 + 2.6 * kU, 18));
}

TEST(DayRing, ChoosesTheCentreByStyle) {
    const auto steer = [](double factor) {
        return VornSteer{.kind = WindowKind::week(), .factor = factor};
    };
    for (const GlyphStyle style : {GlyphStyle::steer, GlyphStyle::usageAndSteer}) {
        EXPECT_EQ(center(style, std::nullopt, 30), Center(Dash{}));
        EXPECT_EQ(center(style, steer(0), 30), Center(Stop{}));
        EXPECT_EQ(center(style, steer(0.5), 30), Center(Arrow{steer(0.5).angleDegrees()}));
    }
    EXPECT_EQ(center(GlyphStyle::usage, steer(0), 30), Center(EvenPace{30}));
    EXPECT_EQ(center(GlyphStyle::usage, steer(0), std::nullopt), Center(None{}));
}

}  // namespace
}  // namespace vorn
