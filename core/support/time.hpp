#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorn {

/// A span of time in seconds, fractions included.
using Seconds = std::chrono::duration<double>;
/// A point in time (UTC), to about a quarter of a microsecond in this century.
using Instant = std::chrono::sys_time<Seconds>;

/// The wall clock. Only long-lived objects and entry points read it; everything else is handed `now`.
Instant systemNow();

/// Seconds since 1970-01-01 00:00:00 UTC, as files with numeric dates store them.
constexpr double secondsSince1970(Instant instant) {
    return instant.time_since_epoch().count();
}
constexpr Instant instantSince1970(double seconds) {
    return Instant{Seconds{seconds}};
}

/// Whether it lies in the years 1970 to 9999. Anything else that a source may send is no time, or is in another unit.
bool isPlausible(Instant instant);

/// Whether an ISO 8601 text has to have fractions of a second.
enum class Fraction : std::uint8_t { forbidden, optional, required };

/// Reads an internet date-time ("2026-11-22T20:45:00.123Z", "…+01:00"): 'T', seconds and a zone (Z or an offset) are
/// required, a fraction is a full stop and one or more digits. Empty for anything else, impossible dates and those
/// before the year 0 or after 9999 in UTC included.
std::optional<Instant> parseIso8601(std::string_view text, Fraction fraction);

/// "2026-11-22T20:45:00Z": whole seconds (rounded down), UTC. What lies beyond the years that the calendar can count
/// (-32767 to 32767) reads like the first or last of their days.
std::string formatIso8601(Instant instant);
/// `formatIso8601` with milliseconds: "2026-11-22T20:45:00.123Z".
std::string formatIso8601Milliseconds(Instant instant);

}  // namespace vorn
