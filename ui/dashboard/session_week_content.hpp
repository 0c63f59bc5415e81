#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/answer.hpp"

namespace vorn {

/// What a session costs of the week, and how many are left.
struct SessionWeekContent {
    Q_GADGET
    QML_VALUE_TYPE(sessionWeekContent)
    Q_PROPERTY(QString waiting MEMBER waiting)
    Q_PROPERTY(QString cost MEMBER cost)
    Q_PROPERTY(QString perWeek MEMBER perWeek)
    Q_PROPERTY(QString left MEMBER left)
    Q_PROPERTY(QString measured MEMBER measured)
    Q_PROPERTY(double sessions MEMBER sessions)
    Q_PROPERTY(double usedSessions MEMBER usedSessions)

public:
    QString waiting;          ///< What is missing while nothing can be said; then everything else is empty.
    QString cost;             ///< "≈ 11% of the week"
    QString perWeek;          ///< "8.8"; "∞" when a session costs nothing.
    QString left;             ///< "3.4"; empty while the week is unknown.
    QString measured;         ///< What it was learnt from.
    double sessions = 0;      ///< That fit into a week, for drawing; 0 when there are too many to draw.
    double usedSessions = 0;  ///< How many of `sessions` are used.
    bool operator==(const SessionWeekContent&) const = default;
};

SessionWeekContent sessionWeekContent(const Answer& answer);

}  // namespace vorn
