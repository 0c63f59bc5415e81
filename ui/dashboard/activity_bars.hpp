#pragma once

#include <QList>

#include <QtQml/qqmlregistration.h>

#include "ui/controls/painted_item.hpp"

namespace vorn {

/// Bars on a base line, all in one picture. Time runs from left to right in every language.
class ActivityBars : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<double> bars MEMBER m_bars NOTIFY changed FINAL)
    Q_PROPERTY(int marked MEMBER m_marked NOTIFY changed FINAL)
    Q_PROPERTY(QColor lineColor MEMBER m_lineColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor markColor MEMBER m_markColor NOTIFY changed FINAL)

public:
    using PaintedItem::PaintedItem;

    void paint(QPainter* painter) override;

private:
    QList<double> m_bars;  ///< Heights, 0..1.
    int m_marked = -1;     ///< The bar read out; negative for none.
    QColor m_lineColor = Qt::transparent;
    QColor m_markColor = Qt::transparent;
};

}  // namespace vorn
