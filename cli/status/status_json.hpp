#pragma once

#include <optional>

#include <nlohmann/json_fwd.hpp>

#include "cli/relay_state.hpp"
#include "core/analysis/answer.hpp"

namespace vorn::cli {

/// The answer for programs; the keys are documented in docs/json.md and stay. Absent values are left out.
nlohmann::json statusJson(const Answer& answer, const std::optional<RelayState>& relay, bool withRates);

}  // namespace vorn::cli
