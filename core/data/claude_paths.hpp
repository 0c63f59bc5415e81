#pragma once

#include <filesystem>

/// Where Claude Code keeps its own files. Computed on every call, since the environment may change.
namespace vorn::ClaudePaths {

/// Its settings, transcripts and credentials: `CLAUDE_CONFIG_DIR` (a leading "~" is expanded; empty counts as unset),
/// else "~/.claude".
std::filesystem::path configDirectory();

}  // namespace vorn::ClaudePaths
