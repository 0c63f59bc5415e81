#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/support/process/process.hpp"
#include "core/usage_command/usage_command_parser.hpp"

namespace vorn {

/// Asks Claude Code once, non-interactively, how much of the plan is used. Blocks; meant for a thread of its own.
struct UsageCommandProbe {
    std::filesystem::path executable;  ///< The `claude` to run.
    Seconds timeout{30};               ///< For the whole run.

    /// The fixed arguments: print mode, the /usage command, no session kept, a JSON envelope.
    static const std::vector<std::string>& arguments();

    /// Runs the command and reads what it printed; `now` is asked after it finished. Throws ProbeError, or Cancelled
    /// when `cancellation` asked for it.
    [[nodiscard]] UsageCommandParser::Result run(const std::function<Instant()>& now,
                                                 const Cancellation* cancellation = nullptr) const;

    /// Standard output of `executable`, run in the probe's directory with `cleanEnvironment()`. Throws as `run` does.
    static std::string execute(const std::filesystem::path& executable, std::span<const std::string> arguments,
                               Seconds timeout, const Cancellation* cancellation = nullptr);
    /// Readings from the command's JSON envelope. Throws ProbeError.
    static UsageCommandParser::Result interpret(std::string_view output, Instant now);
    /// The whole environment that the command is given.
    static std::map<std::string, std::string> cleanEnvironment();
};

}  // namespace vorn
