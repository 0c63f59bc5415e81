#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/answer.hpp"

namespace vorn {

/// A limit that is no window: the month's credits, a gateway's spend limit.
struct OtherLimitContent {
    Q_GADGET
    QML_VALUE_TYPE(otherLimit)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString percent MEMBER percent)
    Q_PROPERTY(double used MEMBER used)
    Q_PROPERTY(bool isReached MEMBER isReached)

public:
    QString title;
    QString text;     ///< "$15.40 of $20.00 spent"
    QString percent;  ///< "77%"; empty where there is nothing to draw.
    double used = 0;  ///< 0..1
    bool isReached = false;
    bool operator==(const OtherLimitContent&) const = default;
};

/// `OtherLimitContent`s.
QVariantList otherLimits(const Answer& answer);

}  // namespace vorn
