#pragma once

#include "core/support/unicode/calendar.hpp"
#include "core/support/zone_offsets.hpp"

namespace vorn {

/// The offsets of the calendar's zone from `from` to `to`, with every change between them to the minute (two changes
/// within a day count as one). Empty, which is UTC, when `to` is not after `from` or they are more than ten years
/// apart.
ZoneOffsets wallOffsets(Calendar& calendar, Instant from, Instant to);

}  // namespace vorn
