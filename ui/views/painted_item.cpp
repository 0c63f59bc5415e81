#include "ui/views/painted_item.hpp"

namespace vorn {

PaintedItem::PaintedItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void PaintedItem::setColor(const QColor& color) {
    if (change(m_color, color)) {
        emit colorChanged();
    }
}

}  // namespace vorn
