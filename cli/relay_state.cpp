#include "cli/relay_state.hpp"

#include "core/sources/status_line_connection.hpp"

namespace vorn::cli {

using Kind = StatusLineIntegration::State::Kind;

RelayState readRelayState() try {
    const StatusLineIntegration integration = StatusLineConnection::current();
    return {.kind = integration.state().kind, .downstream = integration.downstreamCommand()};
} catch (const IntegrationError& error) {
    return {.problem = error.what()};
}

const char* key(const RelayState& relay) {
    if (!relay.problem.empty()) {
        return "unknown";
    }
    switch (relay.kind) {
        case Kind::installed:
            return "connected";
        case Kind::stale:
            return "needsReconnecting";
        case Kind::notInstalled:
            break;
    }
    return "notConnected";
}

std::string sentence(const RelayState& relay) {
    if (!relay.problem.empty()) {
        return relay.problem;
    }
    switch (relay.kind) {
        case Kind::installed:
            return "Status line connected";
        case Kind::stale:
            return "Status line needs reconnecting: run vornctl connect";
        case Kind::notInstalled:
            break;
    }
    return "Status line not connected: vornctl connect gives a reading after every turn";
}

}  // namespace vorn::cli
