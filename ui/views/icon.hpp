#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/views/painted_item.hpp"

namespace vorn {

/// A line drawing of a thing to do or to notice.
class Icon : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Symbol symbol READ symbol WRITE setSymbol NOTIFY symbolChanged FINAL)

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

    [[nodiscard]] Symbol symbol() const { return m_symbol; }
    void setSymbol(Symbol symbol);

    void paint(QPainter* painter) override;

signals:
    void symbolChanged();

private:
    Symbol m_symbol = Refresh;
};

}  // namespace vorn
