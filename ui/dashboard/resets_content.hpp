#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

#include <QtQml/qqmlregistration.h>

#include "core/data/reset_plan.hpp"

namespace vorn {

/// A planned reset as a row shows it.
struct ResetRow {
    Q_GADGET
    QML_VALUE_TYPE(resetRow)
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString when MEMBER when)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(bool isPast MEMBER isPast)

public:
    QString id;
    QString when;    ///< "Wed 25 Nov, 18:00"
    QString detail;  ///< "Weekly limits · announced by mail"
    bool isPast = false;
    bool operator==(const ResetRow&) const = default;
};

/// The resets that the user expects or holds.
struct ResetsContent {
    Q_GADGET
    QML_VALUE_TYPE(resetsContent)
    Q_PROPERTY(QVariantList rows MEMBER rows)
    Q_PROPERTY(QString nothing MEMBER nothing)
    Q_PROPERTY(int banked MEMBER banked)

public:
    static constexpr int kMostBanked = 99;

    QVariantList rows;  ///< `ResetRow`s by date.
    QString nothing;    ///< Stands in the place of the rows where there are none.
    int banked = 0;     ///< 0..kMostBanked
    bool operator==(const ResetsContent&) const = default;
};

ResetsContent resetsContent(const ResetPlan& plan, Instant now);

}  // namespace vorn
