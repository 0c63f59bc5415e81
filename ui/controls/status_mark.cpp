#include "ui/controls/status_mark.hpp"

#include <QPainter>
#include <QPainterPath>

namespace vorn {
namespace {

/// In a box of ten by ten. Drawn to look alike in size, not to measure it.
QPainterPath shape(StatusForViews::Status status) {
    QPainterPath path;
    switch (status) {
        case StatusForViews::Comfortable:
            path.addEllipse(QRectF(1, 1, 8, 8));
            break;
        case StatusForViews::Watch:
            path.addPolygon(QPolygonF{{5, 0.2}, {9.8, 5}, {5, 9.8}, {0.2, 5}, {5, 0.2}});
            break;
        case StatusForViews::AtRisk:
            path.addPolygon(QPolygonF{{5, 0.5}, {10, 9.3}, {0, 9.3}, {5, 0.5}});
            break;
        case StatusForViews::Limited:
            path.addRoundedRect(QRectF(1, 1, 8, 8), 1, 1);
            break;
        case StatusForViews::Unknown:
            break;
    }
    return path;
}

}  // namespace

void StatusMark::paint(QPainter* painter) {
    constexpr double kBox = 10;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->scale(width() / kBox, height() / kBox);
    painter->fillPath(shape(m_status), color());
}

}  // namespace vorn
