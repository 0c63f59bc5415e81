#include "core/usage_command/client_run.hpp"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include "core/data/vorn_paths.hpp"
#include "core/support/text.hpp"
#include "core/usage_command/probe_error.hpp"
#include "core/usage_command/usage_envelope.hpp"

namespace vorn {
namespace {

using Kind = ProbeFailure::Kind;
using Cause = ProbeFailure::Cause;

constexpr std::size_t kSnippetBytes = 300;
constexpr std::size_t kSnippetCharacters = 300;

/// What the script's first line asks for: "node" of "#!/usr/bin/env node" and of "#!/opt/node/bin/node". Empty for
/// anything that is no script.
std::string interpreterOf(const std::filesystem::path& executable) {
    std::ifstream file(executable, std::ios::binary);
    std::string line(kSnippetBytes, '\0');
    file.read(line.data(), static_cast<std::streamsize>(line.size()));
    line.resize(static_cast<std::size_t>(file.gcount()));
    line.resize(std::min(line.find_first_of("\r\n"), line.size()));
    if (!line.starts_with("#!")) {
        return {};
    }
    std::istringstream words(line.substr(2));
    std::string command;
    words >> command;
    if (std::string argument; std::filesystem::path(command).filename() == "env" && words >> argument) {
        return repairUtf8(argument);
    }
    return repairUtf8(command);
}

/// Why the system did not start it: the reason it gives is that of the interpreter or of the folder as well.
ProbeFailure launchFailure(const std::filesystem::path& executable, std::string reason) {
    std::error_code error;
    const auto folder = VornPaths::probeWorkingDirectory();
    if (!std::filesystem::is_directory(folder, error)) {
        return {.kind = Kind::launchFailed, .detail = std::move(reason), .cause = Cause::folderMissing};
    }
    std::string interpreter = interpreterOf(executable);
    if (!interpreter.empty() && std::filesystem::exists(executable, error) &&
        !std::filesystem::exists(interpreter, error)) {
        return {.kind = Kind::launchFailed,
                .detail = std::move(reason),
                .cause = Cause::interpreterMissing,
                .subject = std::move(interpreter)};
    }
    return {.kind = Kind::launchFailed, .detail = std::move(reason)};
}

ProbeFailure commandFailure(const ProcessResult& result) {
    constexpr int kNotFound = 127;  // says env, too
    constexpr std::string_view kEnv = "env: ";
    const std::string& error = result.standardError;
    ProbeFailure failure{.kind = Kind::commandFailed,
                         .detail = outputSnippet(error.empty() ? result.standardOutput : error)};
    const bool hasEnded = result.end == ProcessResult::End::exited;
    if (hasEnded && result.status == kNotFound && error.find(kEnv) != std::string::npos) {
        std::string name = error.substr(error.find(kEnv) + kEnv.size());
        name.resize(std::min(name.find(": "), name.size()));
        std::erase_if(name, [](char c) { return c == '\'' || static_cast<unsigned char>(c) >= 0x80U; });  // quotes
        failure.cause = Cause::interpreterMissing;
        failure.subject = outputSnippet(name);
    } else if (error.find("unknown option '--safe-mode'") != std::string::npos) {
        failure.cause = Cause::clientTooOld;
    } else if (const auto envelope = error.empty() ? readUsageEnvelope(result.standardOutput) : std::nullopt;
               envelope && !envelope->result.empty()) {
        failure.cause = Cause::saidWhy;
        failure.subject = textSnippet(envelope->result);
    }
    return failure;
}

}  // namespace

ProcessResult runClient(ClientRun run, const Cancellation* cancellation) {
    const std::filesystem::path executable = run.executable;
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
        throw ProbeError(launchFailure(executable, repairUtf8(error.what())));
    }
    if (result.end == ProcessResult::End::timedOut) {
        throw ProbeError(Kind::timedOut);
    }
    return result;
}

std::string outputOf(ProcessResult result) {
    if (result.end == ProcessResult::End::signalled || result.status != 0) {
        throw ProbeError(commandFailure(result));
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
