#include "core/sources/status_line_connection.hpp"

#include "core/data/vorn_paths.hpp"
#include "core/sources/bridge_installer.hpp"
#include "core/support/executable_path.hpp"

namespace vorn::StatusLineConnection {
namespace fs = std::filesystem;

StatusLineIntegration current() {
    // Claude Code runs the relay in directories of its own.
    return StatusLineIntegration({.settings = fs::absolute(StatusLineIntegration::defaultSettings()),
                                  .record = fs::absolute(VornPaths::integrationRecord()),
                                  .bridge = fs::absolute(VornPaths::bridgeExecutable())});
}

void connect(const StatusLineIntegration& integration, Instant now) {
    const fs::path relay = BridgeInstaller::find(runningExecutable());
    // Settings that cannot be read are told before anything is copied.
    [[maybe_unused]] const auto readable = integration.state();
    BridgeInstaller::install(relay, integration.locations().bridge);
    integration.install(now);
}

void disconnect(const StatusLineIntegration& integration) {
    const bool isOurs = integration.state().kind != StatusLineIntegration::State::Kind::notInstalled;
    const bool hasAnother = !isOurs && integration.readSettings().contains("statusLine");
    if (!hasAnother || !integration.readRecord()) {
        integration.uninstall();
        return;
    }
    std::error_code ignored;
    fs::remove(integration.locations().record, ignored);
}

}  // namespace vorn::StatusLineConnection
