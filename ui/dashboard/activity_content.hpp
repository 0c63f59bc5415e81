#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/answer.hpp"
#include "ui/dashboard/dashboard_enums.hpp"

namespace vorn {

/// How token use was spread over the last day or week.
struct ActivityContent {
    Q_GADGET
    QML_VALUE_TYPE(activityContent)
    Q_PROPERTY(vorn::PeriodForViews::Period period MEMBER period)
    Q_PROPERTY(QString lastReply MEMBER lastReply)
    Q_PROPERTY(QString nothing MEMBER nothing)
    Q_PROPERTY(QString summary MEMBER summary)
    Q_PROPERTY(QList<double> bars MEMBER bars)
    Q_PROPERTY(QList<double> marks MEMBER marks)
    Q_PROPERTY(QStringList markTexts MEMBER markTexts)

public:
    PeriodForViews::Period period = PeriodForViews::Day;
    QString lastReply;      ///< "last reply 20:43"; empty without any.
    QString nothing;        ///< Why there are no bars; else empty.
    QString summary;        ///< The whole period in a sentence, for a screen reader.
    QList<double> bars;     ///< Heights, 0..1 of the highest.
    QList<double> marks;    ///< Where the times below stand, 0..1 of the width.
    QStringList markTexts;  ///< One a mark.

    std::vector<ActivitySummary::Bucket> buckets;  ///< One a bar, aligned with the wall clock.
    Seconds width{};                               ///< Of a bucket.
    Instant latest;                                ///< When the last bucket began; today, as long as it lasts.

    /// "19:10 – 19:20 · 84k weighted tokens"; empty where there is no such bar.
    Q_INVOKABLE QString describe(int bar) const;

    bool operator==(const ActivityContent&) const = default;
};

/// `period`: a day or a week.
ActivityContent activityContent(const Answer& answer, PeriodForViews::Period period);

/// Where the last bucket of the period ends: until then the same activity gives the same content.
Instant activityEnd(PeriodForViews::Period period, Instant now);

}  // namespace vorn
