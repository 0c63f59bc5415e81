#include "core/usage_command/client_run.hpp"

#include <cstddef>
#include <utility>

#include "core/data/vorn_paths.hpp"
#include "core/support/text.hpp"
#include "core/usage_command/probe_error.hpp"

namespace vorn {
namespace {

using Kind = ProbeError::Kind;

constexpr std::size_t kSnippetBytes = 300;
constexpr std::size_t kSnippetCharacters = 300;

}  // namespace

ProcessResult runClient(ClientRun run, const Cancellation* cancellation) {
    ProcessResult result;
    try {
        result = runProcess({.executable = std::move(run.executable),
                             .arguments = std::move(run.arguments),
                             .environment = std::move(run.environment),
                             .workingDirectory = VornPaths::probeWorkingDirectory(),
                             .input = std::move(run.input),
                             .timeout = run.timeout},
                            cancellation);
    } catch (const LaunchError& error) {
        throw ProbeError(Kind::launchFailed, repairUtf8(error.what()));
    }
    if (result.end == ProcessResult::End::timedOut) {
        throw ProbeError(Kind::timedOut);
    }
    return result;
}

std::string outputOf(ProcessResult result) {
    if (result.end == ProcessResult::End::signalled || result.status != 0) {
        const std::string& said = result.standardError.empty() ? result.standardOutput : result.standardError;
        throw ProbeError(Kind::commandFailed, outputSnippet(said));
    }
    return std::move(result.standardOutput);
}

std::string outputSnippet(std::string_view output) {
    return repairUtf8(output.substr(0, kSnippetBytes));
}

std::string textSnippet(std::string_view text) {
    return std::string(firstCodePoints(text, kSnippetCharacters));
}

}  // namespace vorn
