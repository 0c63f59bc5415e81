#pragma once

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "core/support/time.hpp"

namespace vorn::cli {

/// Reads `--now`: an ISO 8601 moment that replaces the clock.
void addNowOption(CLI::App& command, std::optional<Instant>& now);

/// Takes a configuration directory of Claude Code.
void addRootOption(CLI::App& command, std::string& configDirectory);

/// Reads a span such as "24h" or "7d".
CLI::Option* addSpanOption(CLI::App& command, const std::string& names, Seconds& span, const std::string& description);

/// What each value is called on the command line, in the order in which they are offered.
template <typename Value>
using Choices = std::vector<std::pair<std::string, Value>>;

/// Takes one of the names and leaves its value in `target`; anything else is wrong usage.
template <typename Value, typename Target>
CLI::Option* addChoice(CLI::App& command, const std::string& names, Target& target, const Choices<Value>& choices,
                       const std::string& description) {
    std::vector<std::string> offered;
    std::ranges::transform(choices, std::back_inserter(offered), [](const auto& choice) { return choice.first; });
    const auto take = [&target, choices](const std::string& text) {
        target = std::ranges::find(choices, text, [](const auto& choice) { return choice.first; })->second;
    };
    return command.add_option_function<std::string>(names, take, description)
        ->check(CLI::IsMember(offered).description(""));
}

}  // namespace vorn::cli
