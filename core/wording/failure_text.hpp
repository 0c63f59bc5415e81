#pragma once

#include <string>

#include "core/data/probe_failure.hpp"

/// Why the client gave no reading, and what to do.
namespace vorn::Format {

/// One more sentence where there is something to do that `sentence` does not say; else empty.
std::string advice(const ProbeFailure& failure);

/// The first line of the description, without blanks at its end: for where there is room for one.
std::string sentence(const ProbeFailure& failure);

/// What follows it, trimmed: the client's own words, which are to be shown as such. Usually empty.
std::string quoted(const ProbeFailure& failure);

/// Whether the failure means that no client was run: nobody was asked.
bool wasNobodyAsked(const ProbeFailure& failure);

}  // namespace vorn::Format
