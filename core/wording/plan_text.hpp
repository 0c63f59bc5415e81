#pragma once

#include <string>

#include "core/data/planned_reset.hpp"
#include "core/wording/phrase.hpp"

/// The reset plan in words.
namespace vorn::Format {

/// Stands where nothing is planned.
std::string nothingPlanned();

/// "Thu 26 Nov, 18:00", in the user's locale and time zone.
Phrase plannedMoment(const PlannedReset& reset);
/// "in 1d 3h", "has passed".
std::string plannedWhen(const PlannedReset& reset, Instant now);
/// What it covers and the user's note: "Weekly limits · announced for the launch".
std::string plannedScope(const PlannedReset& reset);

std::string banked(std::int64_t count);  ///< "1 reset banked"

}  // namespace vorn::Format
