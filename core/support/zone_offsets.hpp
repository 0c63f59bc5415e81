#pragma once

#include <cstdint>
#include <vector>

#include "core/support/time.hpp"

namespace vorn {

/// How far a zone's clocks are ahead of UTC over a stretch of time, as a value: what needs local hours can be handed it
/// without knowing any rules. Before the first change the offset of that one holds; without any it is UTC.
class ZoneOffsets {
public:
    struct Change {
        Instant from;
        Seconds offset{};  ///< Added to UTC; positive to the east.
        bool operator==(const Change&) const = default;
    };

    ZoneOffsets() = default;
    /// `changes` in any order; those with numbers that are not finite are left out.
    explicit ZoneOffsets(std::vector<Change> changes);

    [[nodiscard]] Seconds offset(Instant instant) const;

    /// Whole hours of the wall clock since 1970-01-01 00:00 local time: consecutive through the day, one of them empty
    /// where the clock goes forward, one twice as long where it goes back. Any number for an instant beyond a million
    /// years.
    [[nodiscard]] std::int64_t hour(Instant instant) const;
    /// When the wall clock shows the next full hour, or the offset changes before it does.
    [[nodiscard]] Instant nextHour(Instant instant) const;

    bool operator==(const ZoneOffsets&) const = default;

private:
    std::vector<Change> m_changes;  ///< By time.
};

/// 0..167 of an hour as `ZoneOffsets` counts them: 0 is the one that begins on Monday at midnight.
constexpr int hourOfWeek(std::int64_t hour) {
    constexpr std::int64_t kHours = 168;
    constexpr std::int64_t kThursday = 72;  // the weekday of 1970-01-01
    return static_cast<int>(((hour + kThursday) % kHours + kHours) % kHours);
}

/// The local day that an hour belongs to, counted from 1970-01-01.
constexpr std::int64_t dayOfHour(std::int64_t hour) {
    return (hour - (hour % 24 + 24) % 24) / 24;
}

}  // namespace vorn
