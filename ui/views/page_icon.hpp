#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/views/painted_item.hpp"

namespace vorn {

/// A line drawing of a page of the settings or of one of its controls.
class PageIcon : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Symbol symbol READ symbol WRITE setSymbol NOTIFY symbolChanged FINAL)

public:
    enum Symbol : int { General, MenuBar, Bell, Terminal, Tick, Grip };
    Q_ENUM(Symbol)

    using PaintedItem::PaintedItem;

    [[nodiscard]] Symbol symbol() const { return m_symbol; }
    void setSymbol(Symbol symbol);

    void paint(QPainter* painter) override;

signals:
    void symbolChanged();

private:
    Symbol m_symbol = General;
};

}  // namespace vorn
