#include "ui/dashboard/session_pips.hpp"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace vorn {
namespace {

constexpr int kColumns = 12;
// In heights of a pip.
constexpr double kGap = 0.22;
constexpr double kRadius = 0.18;

}  // namespace

SessionPips::SessionPips(QQuickItem* parent) : PaintedItem(parent) {
    connect(this, &SessionPips::changed, this, &SessionPips::fitHeight);
}

void SessionPips::fitHeight() {
    const int rows = static_cast<int>(std::ceil(std::ceil(m_sessions) / kColumns));
    setImplicitHeight(rows > 0 ? rows * m_pipHeight * (1 + kGap) - m_pipHeight * kGap : 0);
}

void SessionPips::paint(QPainter* painter) {
    const int count = static_cast<int>(std::ceil(m_sessions));
    if (count < 1) {
        return;
    }
    painter->setRenderHint(QPainter::Antialiasing);
    if (m_mirrored) {
        painter->translate(width(), 0);
        painter->scale(-1, 1);
    }
    const double gap = m_pipHeight * kGap;
    const int columns = std::min(count, kColumns);
    const double each = (width() - gap * (columns - 1)) / columns;
    for (int i = 0; i < count; ++i) {
        const int row = i / kColumns;
        const QRectF place(i % kColumns * (each + gap), row * (m_pipHeight + gap), each, m_pipHeight);
        QPainterPath pip;
        pip.addRoundedRect(place, m_pipHeight * kRadius, m_pipHeight * kRadius);
        const double end = std::clamp(m_sessions - i, 0.0, 1.0);
        const double used = std::clamp(m_used - i, 0.0, end);
        QPainterPath rest;
        rest.addRect(QRectF(place.left() + used * each, place.top(), (end - used) * each, place.height()));
        QPainterPath pale;
        pale.addRect(QRectF(place.left(), place.top(), used * each, place.height()));
        painter->fillPath(pip.intersected(pale), m_paleColor);
        painter->fillPath(pip.intersected(rest), color());
    }
}

}  // namespace vorn
