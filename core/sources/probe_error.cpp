#include "core/sources/probe_error.hpp"

#include <utility>

namespace vorn {
namespace {

constexpr std::string_view kCommandFailed = "claude /usage failed: ";

std::string describe(ProbeError::Kind kind, const std::string& payload) {
    switch (kind) {
        case ProbeError::Kind::launchFailed:
            return "Couldn't run claude: " + payload;
        case ProbeError::Kind::commandFailed:
            return std::string(kCommandFailed) + payload;
        case ProbeError::Kind::unrecognizedOutput:
            return "Vorn couldn't read the /usage output. Claude Code may have changed its format.\n" + payload;
        case ProbeError::Kind::claudeNotFound:
            return "Couldn't find the claude command. Install Claude Code, or set its path in Settings.";
        case ProbeError::Kind::timedOut:
            return "claude /usage didn't answer in time.";
        case ProbeError::Kind::notSubscription:
            break;
    }
    return "Claude Code isn't signed in with a Pro or Max subscription, so there are no plan limits to show.";
}

}  // namespace

ProbeError::ProbeError(Kind kind, std::string payload)
    : std::runtime_error(describe(kind, payload)), m_kind(kind), m_payload(std::move(payload)) {}

std::string ProbeError::adviceFor(std::string_view message) {
    if (!message.starts_with(kCommandFailed)) {
        return {};
    }
    message.remove_prefix(kCommandFailed.size());
    // 2.1.170 is the oldest client seen to know the option.
    if (message.find("unknown option '--safe-mode'") != std::string_view::npos) {
        return "This Claude Code is too old for Vorn; update it to 2.1.170 or newer with: claude update";
    }
    if (message.find_first_not_of(" \t\r\n") == std::string_view::npos) {
        return "It ended without a word; claude -p /usage in a terminal may tell more.";
    }
    return {};
}

}  // namespace vorn
