#include "ui/charts/time_axis.hpp"

#include <QDateTime>
#include <cmath>
#include <string>

#include "core/wording/format.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

/// Clocks are set back and forth: no more marks than this, whatever happens.
constexpr int kMostTicks = 48;

QDateTime local(Instant instant) {
    return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(std::ceil(secondsSince1970(instant))));
}

/// The first full hour or beginning of a day at or after a moment.
QDateTime firstTick(const QDateTime& from, bool isByDay) {
    if (isByDay) {
        const QDateTime day = from.date().startOfDay();
        return day < from ? from.date().addDays(1).startOfDay() : day;
    }
    constexpr qint64 kHour = 3600;
    const QTime time = from.time();
    const qint64 past = time.minute() * 60LL + time.second();
    return past == 0 ? from : from.addSecs(kHour - past);
}

QDateTime nextTick(const QDateTime& tick, bool isByDay) {
    return isByDay ? tick.date().addDays(1).startOfDay() : tick.addSecs(3600);
}

}  // namespace

TimeAxis timeAxis(Instant from, Instant to) {
    TimeAxis axis;
    if (!std::isfinite((to - from).count()) || to <= from) {
        return axis;
    }
    const bool isByDay = to - from > 24h;
    const QDateTime end = local(to);
    for (QDateTime tick = firstTick(local(from), isByDay); tick <= end && axis.ticks.size() < kMostTicks;
         tick = nextTick(tick, isByDay)) {
        const Instant instant = instantSince1970(static_cast<double>(tick.toSecsSinceEpoch()));
        axis.ticks.append((instant - from).count());
        axis.texts.append(QString::fromStdString(isByDay ? Format::weekday(instant) : Format::clock(instant, instant)));
    }
    return axis;
}

}  // namespace vorn
