#include "core/status_line/bridge_installer.hpp"

#include <system_error>

#include <unistd.h>

#include "core/status_line/integration_error.hpp"
#include "core/status_line/integration_record.hpp"
#include "core/support/file.hpp"

namespace vorn::BridgeInstaller {
namespace fs = std::filesystem;
namespace {

constexpr unsigned kMode = 0755;
constexpr std::chrono::milliseconds kPatience{2000};

bool canRun(const fs::path& file) {
    std::error_code ignored;
    return fs::is_regular_file(file, ignored) && ::access(file.c_str(), X_OK) == 0;
}

}  // namespace

fs::path find(const fs::path& executable) {
    const fs::path directory = executable.parent_path();
    const fs::path parent = directory.parent_path();
    for (const fs::path& place :
         {parent / "Helpers" / kBridgeName, directory / kBridgeName, parent / "libexec/vorn" / kBridgeName}) {
        if (!executable.empty() && canRun(place)) {
            return place;
        }
    }
    throw IntegrationError(IntegrationError::Kind::bridgeMissing, "vorn-bridge is missing from the app bundle.");
}

void install(const fs::path& relay, const fs::path& destination) try {
    createPrivateDirectories(fs::absolute(destination).parent_path());
    const auto lock = FileLock::acquire(destination.string() + ".lock", kPatience);
    if (lock) {
        removeAbandonedTemporaries(destination);
    }
    replaceFile({.path = destination, .content = requireFile(relay), .mode = kMode, .followsLinks = false});
} catch (const fs::filesystem_error& error) {
    throw IntegrationError(IntegrationError::Kind::notWritten,
                           "Couldn't copy vorn-bridge to " + destination.string() + ": " + error.code().message());
}

}  // namespace vorn::BridgeInstaller
