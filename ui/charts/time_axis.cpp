#include "ui/charts/time_axis.hpp"

#include <cmath>
#include <string>

#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "core/wording/format.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

/// Clocks are set back and forth: no more marks than this, whatever happens.
constexpr int kMostTicks = 48;

/// The first full hour, or beginning of a day, at or after a moment.
std::optional<Instant> firstTick(const Calendar& calendar, Instant from, bool isByDay) {
    auto wall = calendar.wallTime(from);
    if (!wall) {
        return std::nullopt;
    }
    wall->minute = 0;
    if (!isByDay) {
        const auto hour = calendar.instant(*wall);
        return hour ? std::optional(*hour + 1h * std::ceil((from - *hour) / 1h)) : std::nullopt;
    }
    wall->hour = 0;
    const auto day = calendar.instant(*wall);
    ++wall->day;
    return day && *day < from ? calendar.instant(*wall) : day;
}

std::optional<Instant> nextTick(const Calendar& calendar, Instant tick, bool isByDay) {
    return isByDay ? firstTick(calendar, tick + 1s, true) : tick + 1h;
}

}  // namespace

TimeAxis timeAxis(Instant from, Instant to) {
    TimeAxis axis;
    if (!std::isfinite((to - from).count()) || to <= from) {
        return axis;
    }
    const bool isByDay = to - from > 24h;
    const Calendar calendar(currentTimeZone());
    for (auto tick = firstTick(calendar, from, isByDay); tick && *tick <= to && axis.ticks.size() < kMostTicks;
         tick = nextTick(calendar, *tick, isByDay)) {
        axis.ticks.append((*tick - from).count());
        axis.texts.append(QString::fromStdString(isByDay ? Format::weekday(*tick) : Format::clock(*tick, *tick)));
    }
    return axis;
}

}  // namespace vorn
