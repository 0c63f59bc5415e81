#pragma once

#include <QList>
#include <QObject>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <span>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/window_assessment.hpp"
#include "core/data/reset_plan.hpp"

namespace vorn {

/// What stands still while time passes. x is in seconds since the chart begins.
struct LimitChartMarks {
    Q_GADGET
    QML_VALUE_TYPE(limitChartMarks)
    Q_PROPERTY(QList<double> ticks MEMBER ticks)
    Q_PROPERTY(QStringList tickTexts MEMBER tickTexts)
    Q_PROPERTY(QList<double> epochs MEMBER epochs)
    Q_PROPERTY(QList<double> flags MEMBER flags)

public:
    QList<double> ticks;
    QStringList tickTexts;  ///< One a tick.
    QList<double> epochs;   ///< Where the window began anew after an early reset.
    QList<double> flags;    ///< Planned resets.
    bool operator==(const LimitChartMarks&) const = default;
};

/// What the chart of one window draws. x is in seconds since the chart begins, y in percent used.
struct LimitChartContent {
    Q_GADGET
    QML_VALUE_TYPE(limitChart)
    Q_PROPERTY(double span MEMBER span)
    Q_PROPERTY(double top MEMBER top)
    Q_PROPERTY(double now MEMBER now)
    Q_PROPERTY(double used MEMBER used)
    Q_PROPERTY(double evenPaceEnd MEMBER evenPaceEnd)
    Q_PROPERTY(bool isCutShort MEMBER isCutShort)
    Q_PROPERTY(bool isProjected MEMBER isProjected)
    Q_PROPERTY(QPointF projectionEnd MEMBER projectionEnd)
    Q_PROPERTY(bool isBeyondTop MEMBER isBeyondTop)
    Q_PROPERTY(QString projectionText MEMBER projectionText)
    Q_PROPERTY(double crossing MEMBER crossing)
    Q_PROPERTY(QString crossingText MEMBER crossingText)
    Q_PROPERTY(QString emptyText MEMBER emptyText)
    Q_PROPERTY(QString summary MEMBER summary)

public:
    double span = 0;   ///< How long the chart is; 0 while there is nothing to draw, which `emptyText` explains.
    double top = 100;  ///< The highest percent drawn.
    double now = 0;
    double used = 0;          ///< Percent used now.
    double evenPaceEnd = -1;  ///< Where even use reaches 100 %; negative while that is not known.
    bool isCutShort = false;  ///< A planned reset ends the window there.
    bool isProjected = false;
    QPointF projectionEnd;     ///< Where its line ends: at the horizon or where it leaves the chart.
    bool isBeyondTop = false;  ///< It leaves the chart.
    QString projectionText;    ///< What it comes to at the horizon: "116%".
    double crossing = -1;      ///< Where it reaches the limit; negative when it does not.
    QString crossingText;      ///< The time of day.
    LimitChartMarks marks;
    QString emptyText;
    QString summary;                   ///< The chart in a sentence, for a screen reader.
    std::vector<QList<QPointF>> runs;  ///< The readings up to now, apart at each epoch.

    bool operator==(const LimitChartContent&) const = default;
};

struct LimitChartInput {
    const WindowAssessment& assessment;
    std::span<const VornEngine::RatePoint> readings;  ///< Of the window's instance, in order of time.
    const ResetPlan& plan;
    Instant now;
};

LimitChartContent limitChartContent(const LimitChartInput& input);

/// What the chart shows at `x`: the readings up to now, the projection after it. Empty where it shows nothing.
std::optional<double> chartValue(const LimitChartContent& chart, double x);

}  // namespace vorn
