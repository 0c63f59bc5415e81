#pragma once

#include <optional>
#include <string>

#include "cli/relay_state.hpp"
#include "cli/terminal.hpp"
#include "core/analysis/answer.hpp"

namespace vorn::cli {

struct StatusTextOptions {
    bool rates = false;  ///< The burn rate over five horizons below each window.
};

/// The status for people, ending in a line feed; empty without any limit. `relay`: absent in a demonstration.
std::string renderStatus(const Answer& answer, const std::optional<RelayState>& relay, const Terminal& terminal,
                         const StatusTextOptions& options = {});

/// Why there are no figures, or no newer ones, and what cannot be saved; empty when all is well.
std::string complaint(const Answer& answer);

}  // namespace vorn::cli
