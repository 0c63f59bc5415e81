#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/rate_reading.hpp"
#include "core/analysis/window_assessment.hpp"

namespace vorn {

/// How fast a window was used over one stretch of time.
struct PaceRow {
    Q_GADGET
    QML_VALUE_TYPE(paceRow)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString rate MEMBER rate)
    Q_PROPERTY(QString factor MEMBER factor)
    Q_PROPERTY(double bar MEMBER bar)
    Q_PROPERTY(bool isTooFast MEMBER isTooFast)
    Q_PROPERTY(QString reason MEMBER reason)

public:
    QString label;  ///< "1 h"
    QString rate;   ///< "35%/h"; empty with too little data.
    QString factor;  ///< What can be sustained over what was: "×0.64", "idle", "–" with too little data; may be empty.
    double bar = 0;          ///< -1 (a quarter of the sustainable pace or less) to 1 (four times it or more).
    bool isTooFast = false;  ///< Faster than can be sustained.
    QString reason;          ///< Why there is no rate.
    bool operator==(const PaceRow&) const = default;
};

/// How fast a window is used, over several stretches of time and against what can be sustained.
struct PaceContent {
    Q_GADGET
    QML_VALUE_TYPE(pace)
    Q_PROPERTY(QString sustainable MEMBER sustainable)
    Q_PROPERTY(QVariantList rows MEMBER rows)
    Q_PROPERTY(QString projected MEMBER projected)
    Q_PROPERTY(bool isProjectedOver MEMBER isProjectedOver)
    Q_PROPERTY(QString resets MEMBER resets)

public:
    QString sustainable;           ///< "sustainable 22%/h"; empty while it is not known.
    QVariantList rows;             ///< `PaceRow`s, from now to the whole window.
    QString projected;             ///< "116% · 0% unused", or "–".
    bool isProjectedOver = false;  ///< Past the limit.
    QString resets;                ///< "in 1h 15m · 22:00", or why there is no such moment.
    bool operator==(const PaceContent&) const = default;
};

/// `rates`: as `VornEngine::rates` gives them; none while nothing may be concluded. `usesActivity`: as in `Answer`.
PaceContent paceContent(const WindowAssessment& assessment, const std::vector<RateReading>& rates, bool usesActivity,
                        Instant now);

}  // namespace vorn
