#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/support/time.hpp"
#include "core/support/unicode/time_zone.hpp"

/// Times of day as the user writes them. The locale is that of `LC_ALL`, else `LC_TIME`, else `LANG` (the first that is
/// set and not empty), read on each call; without one, and for "C" and "POSIX", it is English with a 24-hour clock, as
/// programs in that locale print the time. All functions may be called from any thread.
namespace vorn {

/// The locale's short time: "11:16 PM" (with U+202F before the letters), "23:16". Empty for an instant that is no
/// number.
std::string shortTime(Instant instant, const TimeZone& zone);

/// The locale's abbreviated weekday, as it stands alone: "Thu", "Do". Empty for an instant that is no number.
std::string shortWeekday(Instant instant, const TimeZone& zone);

/// The locale's date without the year: "Wed 25 Nov", "Wed, Nov 25", "Mi., 25. Nov.". Empty for an instant that is no
/// number.
std::string shortDate(Instant instant, const TimeZone& zone);

/// The locale's date in digits, as people type it: "11/25/2026", "25.11.2026"; without a locale "2026-11-25".
std::string typedDate(Instant instant, const TimeZone& zone);

/// What people typed for a date: as `typedDate` gives it (a year of two digits belongs to this century) or as
/// "2026-11-25". Some moment of that day; empty for anything else, impossible dates included.
std::optional<Instant> parseTypedDate(std::string_view text, const TimeZone& zone);

/// Since midnight, as a clock shows it: "18:00", "6:00 PM" and "6 pm" in any locale, and the locale's own way. Empty
/// for anything else.
std::optional<Seconds> parseTypedTime(std::string_view text);

/// Whether both fall on one calendar day of the zone.
bool isSameDay(Instant one, Instant other, const TimeZone& zone);

}  // namespace vorn
