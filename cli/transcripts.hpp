#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/data/activity/activity_event.hpp"
#include "core/support/time.hpp"

namespace vorn {
class LocalActivityScanner;
}

namespace vorn::cli {

/// Where the transcripts are in a configuration directory of Claude Code; in the usual one where `configDirectory` is
/// empty.
std::filesystem::path transcriptsIn(const std::string& configDirectory);

/// Reads the transcripts; where that takes long, a person at a terminal sees how far it has come.
std::vector<ActivityEvent> scanAtTerminal(LocalActivityScanner& scanner, Instant now);

/// Whether the folder `transcripts` exists. If not, says so on standard error, and what to do.
bool tellWhetherThereAre(const std::filesystem::path& transcripts);

}  // namespace vorn::cli
