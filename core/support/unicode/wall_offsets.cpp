#include "core/support/unicode/wall_offsets.hpp"

#include <cmath>

namespace vorn {
namespace {

using namespace std::chrono_literals;

constexpr Seconds kLongest = 24h * 3653;

Seconds offsetAt(Calendar& calendar, Instant instant) {
    const auto wall = calendar.wallTime(instant);
    if (!wall) {
        return 0s;
    }
    const std::chrono::year_month_day date{std::chrono::year{wall->year},
                                           std::chrono::month(static_cast<unsigned>(wall->month)),
                                           std::chrono::day(static_cast<unsigned>(wall->day))};
    const Instant shown =
        std::chrono::sys_days(date) + std::chrono::hours{wall->hour} + std::chrono::minutes{wall->minute};
    return shown - Instant{Seconds{std::floor(secondsSince1970(instant) / 60) * 60}};
}

}  // namespace

ZoneOffsets wallOffsets(Calendar& calendar, Instant from, Instant to) {
    std::vector<ZoneOffsets::Change> changes;
    if (!(to > from) || !(to - from <= kLongest)) {
        return ZoneOffsets{};
    }
    Instant known = from;
    Seconds offset = offsetAt(calendar, from);
    changes.push_back({from, offset});
    while (known < to) {
        const Instant next = std::min<Instant>(known + 24h, to);
        if (const Seconds later = offsetAt(calendar, next); later != offset) {
            Instant before = known;
            Instant after = next;
            while (after - before > 1min) {
                const Instant middle = before + (after - before) / 2;
                (offsetAt(calendar, middle) == offset ? before : after) = middle;
            }
            changes.push_back({Instant{Seconds{std::floor(secondsSince1970(after) / 60) * 60}}, later});
            offset = later;
        }
        known = next;
    }
    return ZoneOffsets(std::move(changes));
}

}  // namespace vorn
