#pragma once

#include <optional>

#include "core/data/usage_insights.hpp"

/// The breakdown that the client printed last, kept for the next call of vornctl and for whoever may not ask for it
/// yet: most calls do not ask the client, and its findings speak of a day or a week anyway.
namespace vorn {

/// Empty when there is none, when it cannot be read, and once it is a day old.
std::optional<UsageInsights> loadBreakdown(Instant now);
/// A failure to write is ignored.
void saveBreakdown(const std::optional<UsageInsights>& breakdown);

}  // namespace vorn
