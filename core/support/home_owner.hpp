#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vorn {

/// The name of the user to whom `path` belongs (its number where it has none), while this process runs as root and that
/// user is somebody else: what root wrote there, that user could no longer change. A path belongs to the owner of the
/// nearest directory that there is, and what lies in the home directory to its owner. Empty in all other cases.
std::optional<std::string> strangersHome(const std::filesystem::path& path);

}  // namespace vorn
