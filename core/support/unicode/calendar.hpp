#pragma once

#include <optional>
#include <utility>

#include "core/support/time.hpp"
#include "core/support/time_zone.hpp"

namespace vorn {

/// A date and time of day as a wall clock shows them. Fields out of range roll over: hour 25 is one o'clock of the next
/// day, day 32 belongs to the next month.
struct WallTime {
    int year = 1970;
    int month = 1;  ///< 1..12
    int day = 1;    ///< from 1
    int hour = 0;
    int minute = 0;
    bool operator==(const WallTime&) const = default;
};

/// The Gregorian calendar of one time zone.
class Calendar {
public:
    explicit Calendar(TimeZone zone) : m_zone(std::move(zone)) {}

    /// Cut to the minute. Empty for an instant that is no number, and beyond the years -32767 to 32767.
    [[nodiscard]] std::optional<WallTime> wallTime(Instant instant) const;
    /// The earlier one of two when the clock goes back; moved forward by the gap when the clock skips the time. Empty
    /// when it lies beyond the calendar.
    [[nodiscard]] std::optional<Instant> instant(const WallTime& time) const;
    /// The same wall time `days` later: 23 to 25 hours a day.
    [[nodiscard]] std::optional<Instant> addDays(Instant instant, int days) const;

private:
    TimeZone m_zone;
};

}  // namespace vorn
