#include "ui/controls/painted_item.hpp"

namespace vorn {

PaintedItem::PaintedItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    for (const auto signal : {&PaintedItem::colorChanged, &PaintedItem::changed}) {
        connect(this, signal, this, [this] { update(); });
    }
}

}  // namespace vorn
