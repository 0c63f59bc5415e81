#pragma once

#include "app/command_line.hpp"

namespace vorn {

/// Renders the views to pictures in `directory`, of invented figures or of what can be read now, and returns the
/// process's exit code. Nothing outside the directory changes: what live reading writes goes to a folder in it that is
/// removed again.
int runSnapshot(const std::filesystem::path& directory, std::optional<demo::Scenario> demo);

}  // namespace vorn
