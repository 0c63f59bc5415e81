#include "ui/dashboard/activity_bars.hpp"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vorn {

void ActivityBars::paint(QPainter* painter) {
    const double ratio = painter->device()->devicePixelRatioF();
    const auto snapped = [ratio](double at) {
        return std::round(at * ratio) / ratio;
    };
    const double base = height() - 1;
    painter->fillRect(QRectF(0, base, width(), 1), m_lineColor);
    if (m_bars.isEmpty()) {
        return;
    }
    const double each = width() / static_cast<double>(m_bars.size());
    const double gap = std::min(2.0, each / 4);
    for (qsizetype i = 0; i < m_bars.size(); ++i) {
        const double left = snapped(static_cast<double>(i) * each);
        const double right = std::max(left + 1 / ratio, snapped(static_cast<double>(i + 1) * each - gap));
        if (i == m_marked) {
            painter->fillRect(QRectF(left, 0, right - left, base), m_markColor);
        }
        if (m_bars[i] > 0) {
            // Little is still something.
            const double tall = std::max(1.5, std::min(m_bars[i], 1.0) * base);
            painter->fillRect(QRectF(left, base - tall, right - left, tall), color());
        }
    }
}

}  // namespace vorn
