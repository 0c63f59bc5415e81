#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/controls/painted_item.hpp"

namespace vorn {

/// The tray's ring, in the size of the item.
class RingItem : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double used MEMBER m_used NOTIFY changed FINAL)
    Q_PROPERTY(bool segmented MEMBER m_segmented NOTIFY changed FINAL)
    Q_PROPERTY(Mark mark MEMBER m_mark NOTIFY changed FINAL)
    Q_PROPERTY(double angle MEMBER m_angle NOTIFY changed FINAL)

public:
    enum Mark : int { NoMark, Arrow, Stop, Dash };
    Q_ENUM(Mark)

    using PaintedItem::PaintedItem;

    void paint(QPainter* painter) override;

private:
    double m_used = -1;  ///< Percent; negative when nothing is known.
    bool m_segmented = false;
    Mark m_mark = NoMark;
    double m_angle = 0;  ///< Of the arrow, in degrees, positive up.
};

}  // namespace vorn
