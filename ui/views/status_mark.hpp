#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/views/painted_item.hpp"
#include "ui/views/view_enums.hpp"

namespace vorn {

/// A status as a shape: circle, diamond, triangle, square.
class StatusMark : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vorn::StatusForViews::Status status READ status WRITE setStatus NOTIFY statusChanged FINAL)

public:
    using PaintedItem::PaintedItem;

    [[nodiscard]] StatusForViews::Status status() const { return m_status; }
    void setStatus(StatusForViews::Status status);

    void paint(QPainter* painter) override;

signals:
    void statusChanged();

private:
    StatusForViews::Status m_status = StatusForViews::Comfortable;
};

}  // namespace vorn
