#include "ui/tray/day_ring.hpp"

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QRectF>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace vorn::DayRing {

namespace {

/// All lengths below are in units of this share of the side.
constexpr double kUnits = 18;
constexpr double kRadius = 6.4;
constexpr double kRingWidth = 2.2;
constexpr double kTrackAlpha = 0.3;
constexpr double kDegreesPerPercent = 3.6;
/// From here on the round caps meet anyway.
constexpr double kFullSweep = 359.6;
constexpr int kSegments = 7;
constexpr double kHalfGap = 4.5;

double sweepOf(double percent) {
    return percent > 0 ? std::min(percent, 100.0) * kDegreesPerPercent : 0;
}

/// Builds the marks of a ring in units of `u` around the middle of the square.
class Drawing {
public:
    explicit Drawing(double side) : m_u(side / kUnits), m_middle(side / 2, side / 2) {}

    void arc(double fromDegrees, double toDegrees, Qt::PenCapStyle cap, double alpha) {
        const double radius = kRadius * m_u;
        const QRectF box(m_middle.x() - radius, m_middle.y() - radius, 2 * radius, 2 * radius);
        // Qt counts its angles counter-clockwise from three o'clock.
        QPainterPath path;
        path.arcMoveTo(box, 90 - fromDegrees);
        path.arcTo(box, 90 - fromDegrees, fromDegrees - toDegrees);
        stroke(path, kRingWidth, cap, alpha);
    }

    void continuous(const std::optional<double>& used) {
        arc(0, 360, Qt::RoundCap, kTrackAlpha);
        const double sweep = used ? sweepOf(*used) : 0;
        if (sweep > 0) {
            arc(0, sweep >= kFullSweep ? 360 : sweep, Qt::RoundCap, 1);
        }
    }

    void segmented(const std::optional<double>& used) {
        const double sweep = used ? sweepOf(*used) : 0;
        for (int i = 0; i < kSegments; ++i) {
            const double from = i * 360.0 / kSegments + kHalfGap;
            const double to = (i + 1) * 360.0 / kSegments - kHalfGap;
            arc(from, to, Qt::FlatCap, kTrackAlpha);
            if (from < sweep) {
                arc(from, std::min(sweep, to), Qt::FlatCap, 1);
            }
        }
    }

    void operator()(const EvenPace& pace) {
        const double angle = sweepOf(pace.percent) * std::numbers::pi / 180;
        const QPointF direction(std::sin(angle), -std::cos(angle));
        QPainterPath hand(m_middle + direction * 1.6 * m_u);
        hand.lineTo(m_middle + direction * 4.1 * m_u);
        stroke(hand, 1.5, Qt::RoundCap, 1);
    }

    void operator()(const Arrow& arrow) {
        constexpr double tip = 3.4;
        constexpr double barb = 2.4 * std::numbers::sqrt2 / 2;
        QPainterPath path(QPointF(-tip, 0));
        path.lineTo(tip, 0);
        path.moveTo(tip - barb, -barb);
        path.lineTo(tip, 0);
        path.lineTo(tip - barb, barb);
        const QTransform place = QTransform::fromTranslate(m_middle.x(), m_middle.y())
                                     .scale(m_u, m_u)
                                     .rotate(std::isfinite(arrow.angleDegrees) ? -arrow.angleDegrees : 0);
        stroke(place.map(path), 1.6, Qt::RoundCap, 1);
    }

    void operator()(const None& /*nothing*/) {}

    void operator()(const Stop& /*stop*/) {
        const double side = 5 * m_u;
        QPainterPath path;
        path.addRoundedRect(QRectF(m_middle.x() - side / 2, m_middle.y() - side / 2, side, side), 0.22 * side,
                            0.22 * side);
        m_marks.push_back({.path = path, .style = Mark::Fill{}, .alpha = 1});
    }

    void operator()(const Dash& /*dash*/) {
        QPainterPath path(m_middle - QPointF(2.6 * m_u, 0));
        path.lineTo(m_middle + QPointF(2.6 * m_u, 0));
        stroke(path, 1.6, Qt::RoundCap, 0.45);
    }

    std::vector<Mark> take() { return std::move(m_marks); }

private:
    void stroke(const QPainterPath& path, double width, Qt::PenCapStyle cap, double alpha) {
        m_marks.push_back({.path = path, .style = Mark::Stroke{.width = width * m_u, .cap = cap}, .alpha = alpha});
    }

    double m_u;
    QPointF m_middle;
    std::vector<Mark> m_marks;
};

}  // namespace

Center center(GlyphStyle style, const std::optional<VornSteer>& steer, std::optional<double> evenPace) {
    if (style == GlyphStyle::usage) {
        return evenPace ? Center(EvenPace{*evenPace}) : Center(None{});
    }
    if (!steer) {
        return Dash{};
    }
    return steer->factor <= 0 ? Center(Stop{}) : Center(Arrow{steer->angleDegrees()});
}

std::vector<Mark> marks(const Ring& ring) {
    Drawing drawing(ring.side);
    if (ring.segmented) {
        drawing.segmented(ring.used);
    } else {
        drawing.continuous(ring.used);
    }
    std::visit(drawing, ring.center);
    return drawing.take();
}

void paint(QPainter& painter, const Ring& ring, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Mark& mark : marks(ring)) {
        QColor ink = color;
        ink.setAlphaF(color.alphaF() * static_cast<float>(mark.alpha));
        if (const auto* stroke = std::get_if<Mark::Stroke>(&mark.style)) {
            painter.strokePath(mark.path, QPen(ink, stroke->width, Qt::SolidLine, stroke->cap, Qt::RoundJoin));
        } else {
            painter.fillPath(mark.path, ink);
        }
    }
    painter.restore();
}

}  // namespace vorn::DayRing
