#include "core/usage_command/usage_command_probe.hpp"

#include <cstdlib>

#include "core/support/file.hpp"
#include "core/support/text.hpp"
#include "core/usage_command/claude_locator.hpp"
#include "core/usage_command/client_run.hpp"
#include "core/usage_command/probe_error.hpp"
#include "core/usage_command/usage_envelope.hpp"

namespace vorn {
namespace {

using Kind = ProbeError::Kind;

/// Whether the text is the client's refusal to show plan limits to somebody who has no plan. The phrases are ASCII, and
/// so is the folding: that of a Turkish locale would not find "api key" in "API KEY".
bool saysNotSubscribed(std::string_view text) {
    const std::string lower = asciiLower(text);
    return lower.find("api key") != std::string::npos ||
           lower.find("only available for subscription") != std::string::npos;
}

}  // namespace

const std::vector<std::string>& UsageCommandProbe::arguments() {
    static const std::vector<std::string> kArguments{
        "-p", "/usage", "--safe-mode", "--no-session-persistence", "--output-format", "json"};
    return kArguments;
}

UsageCommandParser::Result UsageCommandProbe::run(const std::function<Instant()>& now,
                                                  const Cancellation* cancellation) const {
    const std::string output = execute(executable, arguments(), timeout, cancellation);
    return interpret(output, now());
}

std::string UsageCommandProbe::execute(const std::filesystem::path& executable, std::span<const std::string> arguments,
                                       Seconds timeout, const Cancellation* cancellation) {
    return outputOf(runClient({.executable = executable,
                               .arguments = {arguments.begin(), arguments.end()},
                               .environment = cleanEnvironment(),
                               .timeout = timeout},
                              cancellation));
}

UsageCommandParser::Result UsageCommandProbe::interpret(std::string_view output, Instant now) {
    const auto envelope = readUsageEnvelope(output);
    if (!envelope) {
        throw ProbeError(Kind::unrecognizedOutput, outputSnippet(output));
    }
    if (envelope->isError) {
        throw ProbeError(Kind::commandFailed, textSnippet(envelope->result));
    }
    UsageCommandParser::Result parsed = UsageCommandParser::parse(envelope->result, now);
    if (parsed.windows.empty()) {
        if (saysNotSubscribed(envelope->result)) {
            throw ProbeError(Kind::notSubscription);
        }
        throw ProbeError(Kind::unrecognizedOutput, textSnippet(envelope->result));
    }
    return parsed;
}

std::map<std::string, std::string> UsageCommandProbe::cleanEnvironment() {
    std::map<std::string, std::string> environment;
    for (const char* name : {"HOME", "USER", "LOGNAME", "TMPDIR", "SHELL"}) {
        if (const char* value = std::getenv(name); value != nullptr) {
            environment[name] = value;
        }
    }
    if (const auto directory = environmentValue("CLAUDE_CONFIG_DIR")) {  // an empty one counts as unset
        environment["CLAUDE_CONFIG_DIR"] = *directory;
    }
    environment["PATH"] = ClaudeLocator::searchPath(environmentValue("PATH"), homeDirectory().string());
    // Plain English output, which is what the parser reads.
    environment["LANG"] = "en_US.UTF-8";
    environment["NO_COLOR"] = "1";
    return environment;
}

}  // namespace vorn
