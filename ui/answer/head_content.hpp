#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/answer.hpp"
#include "ui/controls/view_enums.hpp"
#include "ui/tray/ring_item.hpp"

namespace vorn {

/// What the head of a window says and what its ring shows.
struct HeadContent {
    Q_GADGET
    QML_VALUE_TYPE(headContent)
    Q_PROPERTY(QString headline MEMBER headline)
    Q_PROPERTY(QString reason MEMBER reason)
    Q_PROPERTY(QString factor MEMBER factor)
    Q_PROPERTY(QString spoken MEMBER spoken)
    Q_PROPERTY(vorn::StatusForViews::Status status MEMBER status)
    Q_PROPERTY(double used MEMBER used)
    Q_PROPERTY(bool segmented MEMBER segmented)
    Q_PROPERTY(vorn::RingItem::Mark mark MEMBER mark)
    Q_PROPERTY(double angle MEMBER angle)

public:
    QString headline;
    QString reason;
    QString factor;  ///< "↓0.6×"; empty when it has no number, which the ring shows as well.
    QString spoken;  ///< For a screen reader.
    StatusForViews::Status status = StatusForViews::Unknown;
    double used = -1;  ///< Percent, of the window that the head is about; negative while there is none.
    bool segmented = false;
    RingItem::Mark mark = RingItem::Dash;
    double angle = 0;  ///< Degrees, positive up; only of an arrow.
    bool operator==(const HeadContent&) const = default;
};

/// While nothing may be concluded yet the headline says so, and the ring is empty.
HeadContent headContent(const Answer& answer);

}  // namespace vorn
