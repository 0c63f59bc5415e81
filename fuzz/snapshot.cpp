#include <nlohmann/json.hpp>

#include "core/status_line/status_line_snapshot.hpp"
#include "fuzz/fuzz_target.hpp"
#include "fuzz/reading_checks.hpp"

/// The file in which the relay leaves its snapshot.
namespace vorn::fuzz {

void checkInput(std::string_view input) {
    const auto file = scratch("read.json");
    writeFile(file, input);
    const auto snapshot = StatusLineSnapshot::read(file);
    if (!snapshot) {
        return;
    }
    require(nlohmann::json::accept(input), "only JSON is a snapshot");
    requireUtf8(snapshot->sessionID.value_or(""));
    requireUtf8(snapshot->claudeVersion.value_or(""));
    const auto windows = snapshot->windows();
    for (const UsageWindow& window : windows) {
        requireSound(window);
    }
    requireAssessable(windows, HistoryIndex());
    const auto copy = scratch("written.json");
    std::filesystem::remove(copy);
    require(snapshot->write(copy), "a snapshot is written");
    require(StatusLineSnapshot::read(copy) == snapshot, "a snapshot is the same after a way through its file");
    // Over the one from elsewhere, which may be newer or of a clock that was ahead.
    auto later = *snapshot;
    later.observedAt = kNow;
    const bool isWritten = later.write(file);
    require(StatusLineSnapshot::read(file) == (isWritten ? later : *snapshot), "the file holds one of the two");
}

}  // namespace vorn::fuzz
