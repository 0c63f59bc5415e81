#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// Where the `claude` executable is. Vorn is started by the desktop, so the inherited PATH is often too short.
namespace vorn::ClaudeLocator {

/// An `overridePath` that is not empty (a leading "~" is expanded) is the only candidate: a wrong choice of the user is
/// reported and nothing else is tried. Otherwise the first executable "claude" on the search path.
std::optional<std::filesystem::path> locate(const std::optional<std::string>& overridePath);

/// `inherited` followed by the places where Claude Code is usually installed and the system's directories, without
/// repetitions, joined by ":".
std::string searchPath(const std::optional<std::string>& inherited, const std::string& home);

/// `home` without a trailing slash.
std::array<std::string, 7> candidateDirectories(const std::string& home);

}  // namespace vorn::ClaudeLocator
