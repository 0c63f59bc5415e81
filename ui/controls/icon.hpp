#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/controls/painted_item.hpp"

namespace vorn {

/// A line drawing of a thing to do or to notice.
class Icon : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Symbol symbol MEMBER m_symbol NOTIFY changed FINAL)

public:
    enum Symbol : int {
        Refresh,
        Ellipsis,
        Chart,
        Sliders,
        Power,
        Flag,
        Warning,
        ChevronDown,
        ChevronUp,
        Cross,
        Plus,
        Minus,
        // Pages of the settings, and their controls.
        General,
        MenuBar,
        Bell,
        Terminal,
        Tick,
        Grip
    };
    Q_ENUM(Symbol)

    using PaintedItem::PaintedItem;

    void paint(QPainter* painter) override;

private:
    Symbol m_symbol = Refresh;
};

}  // namespace vorn
