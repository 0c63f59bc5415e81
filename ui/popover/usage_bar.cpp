#include "ui/popover/usage_bar.hpp"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace vorn {
namespace {

// In bar heights, which the bar's details grow with.
constexpr double kSegmentGap = 3.0 / 8;
constexpr double kSegmentRadius = 2.0 / 8;
constexpr double kGap = 2.0 / 8;            ///< Between what is used and what is forecast.
constexpr double kProjectionEnd = 2.5 / 8;  ///< The solid end of the forecast.
constexpr double kTickWidth = 2.0 / 8;
constexpr double kTickClearance = 2.0 / 8;  ///< Cut out of the bar on each side of the tick.

/// The nearest edge between two device pixels, so that short marks stay sharp.
double snapped(double x, const QPainter& painter) {
    const double ratio = painter.device()->devicePixelRatioF();
    return std::round(x * ratio) / ratio;
}

}  // namespace

QPainterPath UsageBar::outline() const {
    const double top = (height() - m_barHeight) / 2;
    QPainterPath path;
    if (m_segments <= 1) {
        path.addRoundedRect(QRectF(0, top, width(), m_barHeight), m_barHeight / 2, m_barHeight / 2);
        return path;
    }
    const double gap = m_barHeight * kSegmentGap;
    const double each = (width() - gap * (m_segments - 1)) / m_segments;
    const double radius = m_barHeight * kSegmentRadius;
    for (int i = 0; i < m_segments; ++i) {
        path.addRoundedRect(QRectF(i * (each + gap), top, each, m_barHeight), radius, radius);
    }
    return path;
}

void UsageBar::paintFills(QPainter& painter) const {
    const auto fill = [&](double from, double to, const QColor& with) {
        if (to > from) {
            painter.fillRect(QRectF(from, 0, to - from, height()), with);
        }
    };
    const double used = snapped(std::clamp(m_used, 0.0, 1.0) * width(), painter);
    const double projected = snapped(std::clamp(m_projected, 0.0, 1.0) * width(), painter);
    const double gap = used > 0 ? m_barHeight * kGap : 0;
    const double end = m_barHeight * kProjectionEnd;
    fill(0, width(), m_trackColor);
    if (projected > used + gap) {
        // What lies under a translucent track must not shine through.
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        fill(used, used + gap, Qt::transparent);
        fill(used + gap, projected, m_paleColor);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        fill(std::max(used + gap, projected - end), projected, color());
    }
    fill(0, used, color());
}

void UsageBar::paint(QPainter* painter) {
    if (m_mirrored) {
        painter->translate(width(), 0);
        painter->scale(-1, 1);
    }
    // A clip path has hard edges; what is cut out afterwards has not.
    QPainterPath cut = outline();
    const double tick = m_barHeight * kTickWidth;
    const double at = snapped(std::clamp(m_evenPace * width() - tick / 2, 0.0, width() - tick), *painter);
    if (m_evenPace >= 0) {
        const double clear = m_barHeight * kTickClearance;
        QPainterPath around;
        around.addRect(QRectF(at - clear, 0, tick + 2 * clear, height()));
        cut = cut.subtracted(around);
    }
    paintFills(*painter);
    painter->setRenderHint(QPainter::Antialiasing);
    QPainterPath outside;
    outside.addRect(QRectF(-1, -1, width() + 2, height() + 2));
    painter->setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter->fillPath(outside.subtracted(cut), Qt::black);
    painter->setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (m_evenPace >= 0) {
        QPainterPath line;
        line.addRoundedRect(QRectF(at, 0, tick, height()), tick / 2, tick / 2);
        painter->fillPath(line, m_tickColor);
    }
}

}  // namespace vorn
