#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/controls/painted_item.hpp"
#include "ui/controls/view_enums.hpp"

namespace vorn {

/// A status as a shape: circle, diamond, triangle, square.
class StatusMark : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vorn::StatusForViews::Status status MEMBER m_status NOTIFY changed FINAL)

public:
    using PaintedItem::PaintedItem;

    void paint(QPainter* painter) override;

private:
    StatusForViews::Status m_status = StatusForViews::Comfortable;
};

}  // namespace vorn
