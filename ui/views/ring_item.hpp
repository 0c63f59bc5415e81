#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/views/painted_item.hpp"

namespace vorn {

/// The tray's ring, in the size of the item.
class RingItem : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double used READ used WRITE setUsed NOTIFY changed FINAL)
    Q_PROPERTY(bool segmented READ segmented WRITE setSegmented NOTIFY changed FINAL)
    Q_PROPERTY(Mark mark READ mark WRITE setMark NOTIFY changed FINAL)
    Q_PROPERTY(double angle READ angle WRITE setAngle NOTIFY changed FINAL)

public:
    enum Mark : int { NoMark, Arrow, Stop, Dash };
    Q_ENUM(Mark)

    using PaintedItem::PaintedItem;

    [[nodiscard]] double used() const { return m_used; }  ///< Percent; negative when nothing is known.
    [[nodiscard]] bool segmented() const { return m_segmented; }
    [[nodiscard]] Mark mark() const { return m_mark; }
    [[nodiscard]] double angle() const { return m_angle; }  ///< Of the arrow, in degrees, positive up.
    void setUsed(double percent);
    void setSegmented(bool segmented);
    void setMark(Mark mark);
    void setAngle(double degrees);

    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    double m_used = -1;
    bool m_segmented = false;
    Mark m_mark = NoMark;
    double m_angle = 0;
};

}  // namespace vorn
