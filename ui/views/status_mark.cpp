#include "ui/views/status_mark.hpp"

#include <QPainter>
#include <QPainterPath>

namespace vorn {
namespace {

/// In a box of ten by ten. Drawn to look alike in size, not to measure it.
QPainterPath shape(VornStatus status) {
    QPainterPath path;
    switch (status) {
        case VornStatus::comfortable:
            path.addEllipse(QRectF(1, 1, 8, 8));
            break;
        case VornStatus::watch:
            path.addPolygon(QPolygonF{{5, 0.2}, {9.8, 5}, {5, 9.8}, {0.2, 5}, {5, 0.2}});
            break;
        case VornStatus::atRisk:
            path.addPolygon(QPolygonF{{5, 0.5}, {10, 9.3}, {0, 9.3}, {5, 0.5}});
            break;
        case VornStatus::limited:
            path.addRoundedRect(QRectF(1, 1, 8, 8), 1, 1);
            break;
    }
    return path;
}

}  // namespace

void StatusMark::paint(QPainter* painter) {
    constexpr double kBox = 10;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->scale(width() / kBox, height() / kBox);
    painter->fillPath(shape(StatusForViews::toStatus(m_status)), color());
}

}  // namespace vorn
