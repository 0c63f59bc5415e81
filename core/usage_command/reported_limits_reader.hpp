#pragma once

#include "core/usage_command/json_members.hpp"
#include "core/usage_command/reported_limits.hpp"

namespace vorn {

/// Reads the object `rate_limits` of an answer, everything as observed at `at`. False when it is no JSON.
bool readReportedLimits(json_members::ondemand::object object, Instant at, ReportedLimits& limits);

}  // namespace vorn
