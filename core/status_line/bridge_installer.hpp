#pragma once

#include <filesystem>

/// The relay executable: where it came with Vorn, and its copy that Claude Code runs.
namespace vorn::BridgeInstaller {

/// The relay that belongs to the program `executable`: in the helpers of a macOS bundle, else beside the program, else
/// in the libexec folder of an installation. Throws IntegrationError when none of them can be run.
std::filesystem::path find(const std::filesystem::path& executable);

/// Copies the relay afresh as one step, so that a running one is not disturbed. Throws IntegrationError; the old copy
/// then stands.
void install(const std::filesystem::path& relay, const std::filesystem::path& destination);

}  // namespace vorn::BridgeInstaller
