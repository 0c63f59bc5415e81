#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "core/support/time.hpp"

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

/// The Gregorian calendar of one time zone. One thread at a time.
class Calendar {
public:
    /// `zoneId` as `isTimeZoneName` accepts it or `currentTimeZone` gives it; an unknown one counts as UTC.
    explicit Calendar(std::string_view zoneId);
    ~Calendar();
    Calendar(const Calendar&) = delete;
    Calendar& operator=(const Calendar&) = delete;

    /// Cut to the minute. Empty for an instant that is no number.
    std::optional<WallTime> wallTime(Instant instant);
    /// The earlier one of two when the clock goes back; moved forward by the gap when the clock skips the time. Empty
    /// when it lies beyond the calendar.
    std::optional<Instant> instant(const WallTime& time);
    /// The same wall time `days` later: 23 to 25 hours a day.
    std::optional<Instant> addDays(Instant instant, int days);

private:
    class Icu;
    std::unique_ptr<Icu> m_icu;
};

}  // namespace vorn
