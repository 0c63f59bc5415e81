#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "demo/demo.hpp"

namespace vorn {

/// What somebody who starts `vorn` wants.
struct LaunchRequest {
    bool showDashboard = false;
    bool showPopover = false;
    std::optional<demo::Scenario> demo;
    std::optional<std::filesystem::path> snapshot;  ///< A directory for pictures of the views, instead of running.

    bool operator==(const LaunchRequest&) const = default;
};

/// A command line that is answered without starting anything.
struct CommandLineAnswer {
    int exitStatus = 0;
    std::string output;  ///< For standard output.
    std::string error;   ///< For standard error.

    bool operator==(const CommandLineAnswer&) const = default;
};

/// Needs neither a display nor Qt. Wrong usage is an answer with status 2.
std::variant<LaunchRequest, CommandLineAnswer> parseCommandLine(int argc, const char* const* argv);

}  // namespace vorn
