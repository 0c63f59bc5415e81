#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/support/process/process.hpp"

namespace vorn {

/// One run of the client, whatever it is asked for: in the probe's directory, and ended after a time.
struct ClientRun {
    std::filesystem::path executable;
    std::vector<std::string> arguments;
    std::map<std::string, std::string> environment;  ///< The whole of it.
    std::string input{};                             ///< See `ProcessRequest`.
    Seconds timeout{30};
};

/// Throws ProbeError where it cannot be started or does not end in time, and Cancelled.
ProcessResult runClient(ClientRun run, const Cancellation* cancellation);

/// Standard output of a run that went well. Throws ProbeError.
std::string outputOf(ProcessResult result);

/// The beginning of what a process printed, for people: of any bytes, and of a text that is valid UTF-8.
std::string outputSnippet(std::string_view output);
std::string textSnippet(std::string_view text);

}  // namespace vorn
