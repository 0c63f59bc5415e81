#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/controls/painted_item.hpp"

namespace vorn {

/// How much of a limit is used, where that leads, and where even use would be. The bar itself lies in the middle of the
/// item, which the tick of even pace fills from top to bottom. `color`: of what is used.
class UsageBar : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double used MEMBER m_used NOTIFY changed FINAL)
    Q_PROPERTY(double projected MEMBER m_projected NOTIFY changed FINAL)
    Q_PROPERTY(double evenPace MEMBER m_evenPace NOTIFY changed FINAL)
    Q_PROPERTY(int segments MEMBER m_segments NOTIFY changed FINAL)
    Q_PROPERTY(bool mirrored MEMBER m_mirrored NOTIFY changed FINAL)
    Q_PROPERTY(double barHeight MEMBER m_barHeight NOTIFY changed FINAL)
    Q_PROPERTY(QColor paleColor MEMBER m_paleColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor trackColor MEMBER m_trackColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor tickColor MEMBER m_tickColor NOTIFY changed FINAL)

public:
    using PaintedItem::PaintedItem;

    void paint(QPainter* painter) override;

private:
    [[nodiscard]] QPainterPath outline() const;
    void paintFills(QPainter& painter) const;

    // Shares of the bar, 0..1; negative when there is nothing to draw.
    double m_used = 0;
    double m_projected = -1;
    double m_evenPace = -1;
    int m_segments = 1;
    bool m_mirrored = false;
    double m_barHeight = 8;
    QColor m_paleColor;
    QColor m_trackColor;
    QColor m_tickColor;
};

}  // namespace vorn
