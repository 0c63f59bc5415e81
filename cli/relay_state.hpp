#pragma once

#include <optional>
#include <string>

#include "core/sources/status_line_integration.hpp"

namespace vorn::cli {

/// How Vorn stands with Claude Code's status line.
struct RelayState {
    StatusLineIntegration::State::Kind kind = StatusLineIntegration::State::Kind::notInstalled;
    std::optional<std::string> downstream{};  ///< The user's own command behind the relay.
    std::string problem{};                    ///< Why it is not known; then nothing else counts.
};

RelayState readRelayState();

/// "connected", "needsReconnecting", "notConnected", "unknown"
const char* key(const RelayState& relay);
/// A sentence, with what to do where there is something to do.
std::string sentence(const RelayState& relay);

}  // namespace vorn::cli
