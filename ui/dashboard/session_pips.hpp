#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/controls/painted_item.hpp"

namespace vorn {

/// One pip for each session that fits into a week, in rows of twelve at most; the used ones pale, the last and the
/// present one partial. `color`: of those that are left.
class SessionPips : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double sessions MEMBER m_sessions NOTIFY changed FINAL)
    Q_PROPERTY(double used MEMBER m_used NOTIFY changed FINAL)
    Q_PROPERTY(bool mirrored MEMBER m_mirrored NOTIFY changed FINAL)
    Q_PROPERTY(double pipHeight MEMBER m_pipHeight NOTIFY changed FINAL)
    Q_PROPERTY(QColor paleColor MEMBER m_paleColor NOTIFY changed FINAL)

public:
    explicit SessionPips(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

private:
    void fitHeight();

    double m_sessions = 0;  ///< None are drawn for 0.
    double m_used = 0;
    bool m_mirrored = false;
    double m_pipHeight = 0;
    QColor m_paleColor = Qt::transparent;
};

}  // namespace vorn
