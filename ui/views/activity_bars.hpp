#pragma once

#include <QList>

#include <QtQml/qqmlregistration.h>

#include "ui/views/painted_item.hpp"

namespace vorn {

/// Bars on a base line, all in one picture. Time runs from left to right in every language.
class ActivityBars : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<double> bars READ bars WRITE setBars NOTIFY changed FINAL)
    Q_PROPERTY(int marked READ marked WRITE setMarked NOTIFY changed FINAL)
    Q_PROPERTY(QColor lineColor READ lineColor WRITE setLineColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor markColor READ markColor WRITE setMarkColor NOTIFY changed FINAL)

public:
    using PaintedItem::PaintedItem;

    [[nodiscard]] const QList<double>& bars() const { return m_bars; }  ///< Heights, 0..1.
    [[nodiscard]] int marked() const { return m_marked; }               ///< The bar read out; negative for none.
    [[nodiscard]] const QColor& lineColor() const { return m_lineColor; }
    [[nodiscard]] const QColor& markColor() const { return m_markColor; }
    void setBars(const QList<double>& bars) { set(m_bars, bars); }
    void setMarked(int bar) { set(m_marked, bar); }
    void setLineColor(const QColor& color) { set(m_lineColor, color); }
    void setMarkColor(const QColor& color) { set(m_markColor, color); }

    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    template <typename T>
    void set(T& member, T value) {
        if (change(member, std::move(value))) {
            emit changed();
        }
    }

    QList<double> m_bars;
    int m_marked = -1;
    QColor m_lineColor = Qt::transparent;
    QColor m_markColor = Qt::transparent;
};

}  // namespace vorn
