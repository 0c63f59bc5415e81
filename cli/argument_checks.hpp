#pragma once

#include <CLI/CLI.hpp>

#include "core/support/time.hpp"

namespace vorn::cli {

/// Reads `--now`: an ISO 8601 moment that replaces the clock.
void addNowOption(CLI::App& command, std::optional<Instant>& now);

/// Takes a configuration directory of Claude Code.
void addRootOption(CLI::App& command, std::string& configDirectory);

/// Reads a span such as "24h" or "7d".
CLI::Option* addSpanOption(CLI::App& command, const std::string& names, Seconds& span, const std::string& description);

}  // namespace vorn::cli
