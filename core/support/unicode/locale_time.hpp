#pragma once

#include <string>

#include "core/support/time.hpp"
#include "core/support/unicode/time_zone.hpp"

/// Times of day as the user writes them. The locale is that of `LC_ALL`, else `LC_TIME`, else `LANG` (the first that is
/// set and not empty), read on each call; without one, and for "C" and "POSIX", it is English with a 24-hour clock, as
/// programs in that locale print the time. `zoneId` is an identifier that ICU knows, such as `currentTimeZone()`; an
/// unknown one counts as UTC. All functions may be called from any thread.
namespace vorn {

/// The locale's short time: "11:16 PM" (with U+202F before the letters), "23:16". Empty for an instant that is no
/// number.
std::string shortTime(Instant instant, const std::string& zoneId);

/// The locale's abbreviated weekday, as it stands alone: "Thu", "Do". Empty for an instant that is no number.
std::string shortWeekday(Instant instant, const std::string& zoneId);

/// Whether both fall on one calendar day of the zone.
bool isSameDay(Instant one, Instant other, const std::string& zoneId);

}  // namespace vorn
