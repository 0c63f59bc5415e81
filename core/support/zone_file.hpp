#pragma once

#include <optional>
#include <string_view>

#include "core/support/time_zone.hpp"

/// The two forms in which a system keeps the rules of a zone.
namespace vorn {

/// The content of a zone file (TZif, RFC 8536), of the fat kind, which lists the changes of decades, and of the slim
/// one, whose last line has the rule instead. Leap seconds are left out, as the system's clock does. Empty when it is
/// damaged.
std::optional<TimeZone> readZoneFile(std::string_view content);

/// A rule as POSIX has it in `TZ` ("CET-1CEST,M3.5.0,M10.5.0/3") and zone files have it in their last line. One that
/// does not say when summer begins has it as in the United States. Empty for anything else.
std::optional<TimeZone> readZoneRule(std::string_view rule);

}  // namespace vorn
