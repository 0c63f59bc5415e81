#pragma once

#include "core/support/time_zone.hpp"

namespace vorn {

/// The zone's offsets from `from` to `to`, with every change between them to the minute (two changes within a day count
/// as one). Empty, which is UTC, when `to` is not after `from` or they are more than ten years apart.
ZoneOffsets wallOffsets(const TimeZone& zone, Instant from, Instant to);

}  // namespace vorn
