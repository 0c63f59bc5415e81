#pragma once

#include <string>

#include "cli/status_report.hpp"
#include "cli/terminal.hpp"

namespace vorn::cli {

struct StatusTextOptions {
    bool rates = false;  ///< The burn rate over five horizons below each window.
};

/// The status for people, ending in a line feed.
std::string renderStatus(const StatusReport& report, const Terminal& terminal, const StatusTextOptions& options);

}  // namespace vorn::cli
