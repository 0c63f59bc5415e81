#pragma once

#include <string>

#include "core/data/outcome.hpp"

/// What happened to a limit, in words.
namespace vorn::Format {

/// After the limit's name: "reached its limit", "was reset early, at 62%", "ended at 62%".
std::string outcomeText(const Outcome& outcome);

/// "The week now resets Fri 05:50, was Thu 21:04"; of `moved` alone.
std::string movedText(const Outcome& outcome, Instant now);

/// "Wed 25 Nov 14:12": a moment of the last year, in the user's locale and time zone.
std::string dateAndTime(Instant instant);

}  // namespace vorn::Format
