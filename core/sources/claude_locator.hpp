#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// Where Claude Code is and where it keeps its own. Vorn is started by the desktop, so the inherited PATH is often too
/// short.
namespace vorn::ClaudeLocator {

/// A present and not empty `overridePath` (a leading "~" is expanded) is the only candidate: a wrong choice of the user
/// is reported, not second-guessed. Otherwise the first executable "claude" on the search path.
std::optional<std::filesystem::path> locate(const std::optional<std::string>& overridePath);

/// `inherited` followed by the places where Claude Code is usually installed and the system's directories, without
/// repetitions, joined by ":".
std::string searchPath(const std::optional<std::string>& inherited, const std::string& home);

/// Where its settings and transcripts are: `CLAUDE_CONFIG_DIR` (a leading "~" is expanded; empty counts as unset), else
/// "~/.claude".
std::filesystem::path configDirectory();

/// `home` without a trailing slash.
std::array<std::string, 7> candidateDirectories(const std::string& home);

}  // namespace vorn::ClaudeLocator
