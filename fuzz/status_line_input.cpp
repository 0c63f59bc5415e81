#include <nlohmann/json.hpp>

#include "core/status_line/status_line_snapshot.hpp"
#include "fuzz/fuzz_target.hpp"
#include "fuzz/reading_checks.hpp"

/// What Claude Code hands the relay on standard input.
namespace vorn::fuzz {

void checkInput(std::string_view input) {
    const auto snapshot = StatusLineSnapshot::from(input, kNow);
    if (!snapshot) {
        return;
    }
    require(nlohmann::json::accept(input), "only JSON makes a snapshot");
    require(snapshot->observedAt == kNow, "a snapshot is of now");
    const auto windows = snapshot->windows();
    require(!windows.empty(), "a snapshot has a reading");
    for (const UsageWindow& window : windows) {
        requireSound(window);
    }
    requireAssessable(windows, HistoryIndex());
    const auto file = scratch("snapshot.json");
    require(snapshot->write(file), "a snapshot is written");
    require(StatusLineSnapshot::read(file) == snapshot, "a snapshot is the same after a way through its file");
}

}  // namespace vorn::fuzz
