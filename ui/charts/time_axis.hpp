#pragma once

#include <QList>
#include <QStringList>

#include "core/support/time.hpp"

namespace vorn {

/// Where a time axis is marked, with the words for it in the user's way to write times.
struct TimeAxis {
    QList<double> ticks;  ///< Seconds since the axis begins, ascending.
    QStringList texts;    ///< One a tick: "17:00" or "Fri".
    bool operator==(const TimeAxis&) const = default;
};

/// Up to a day it is marked at full hours, else at the beginnings of days, in the user's time zone.
TimeAxis timeAxis(Instant from, Instant to);

}  // namespace vorn
