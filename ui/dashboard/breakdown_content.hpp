#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/answer.hpp"
#include "ui/dashboard/dashboard_enums.hpp"

namespace vorn {

/// One of several that share a whole.
struct RankedShare {
    Q_GADGET
    QML_VALUE_TYPE(rankedShare)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(double share MEMBER share)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(bool isRest MEMBER isRest)

public:
    QString name;
    double share = 0;     ///< 0..1
    QString text;         ///< "46%"
    bool isRest = false;  ///< All that have no bar of their own.
    bool operator==(const RankedShare&) const = default;
};

/// A statement that Claude Code printed.
struct PrintedFinding {
    Q_GADGET
    QML_VALUE_TYPE(printedFinding)
    Q_PROPERTY(QString percent MEMBER percent)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString detail MEMBER detail)

public:
    QString percent;  ///< "71%"
    QString title;
    QString detail;  ///< What followed a middle dot; may be empty.
    bool operator==(const PrintedFinding&) const = default;
};

/// What consumed the quota as Vorn measured it.
struct MeasuredContent {
    Q_GADGET
    QML_VALUE_TYPE(measuredContent)
    Q_PROPERTY(vorn::PeriodForViews::Period period MEMBER period)
    Q_PROPERTY(QVariantList projects MEMBER projects)
    Q_PROPERTY(QVariantList models MEMBER models)
    Q_PROPERTY(QString nothing MEMBER nothing)

public:
    PeriodForViews::Period period = PeriodForViews::FiveHours;
    QVariantList projects;  ///< `RankedShare`s, the largest first, "Other" last.
    QVariantList models;    ///< `RankedShare`s, likewise.
    QString nothing;        ///< Why there are none; else empty.
    bool operator==(const MeasuredContent&) const = default;
};

MeasuredContent measuredContent(const Answer& answer, PeriodForViews::Period period);

/// What consumed the quota as Claude Code printed it.
struct PrintedContent {
    Q_GADGET
    QML_VALUE_TYPE(printedContent)
    Q_PROPERTY(int period MEMBER period)
    Q_PROPERTY(QList<QString> periods MEMBER periods)
    Q_PROPERTY(QString heading MEMBER heading)
    Q_PROPERTY(QString nothing MEMBER nothing)
    Q_PROPERTY(QVariantList findings MEMBER findings)
    Q_PROPERTY(QVariantList skills MEMBER skills)
    Q_PROPERTY(QVariantList subagents MEMBER subagents)

public:
    int period = 0;          ///< Which of the periods the rest is about.
    QStringList periods;     ///< As printed.
    QString heading;         ///< "Claude Code · 133 requests · 9 sessions"
    QString nothing;         ///< Said when nothing was printed; else empty.
    QVariantList findings;   ///< `PrintedFinding`s
    QVariantList skills;     ///< `RankedShare`s
    QVariantList subagents;  ///< `RankedShare`s
    bool operator==(const PrintedContent&) const = default;
};

/// `period`: the last one printed where there are not so many.
PrintedContent printedContent(const std::optional<UsageInsights>& insights, int period);

}  // namespace vorn
