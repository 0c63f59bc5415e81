#pragma once

#include <nlohmann/json_fwd.hpp>

#include "cli/status_report.hpp"

namespace vorn::cli {

/// The status for programs; the keys are documented in docs/json.md and stay. Absent values are left out.
nlohmann::json statusJson(const StatusReport& report, bool withRates);

}  // namespace vorn::cli
