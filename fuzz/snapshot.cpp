#include <nlohmann/json.hpp>

#include "core/status_line/more_limits.hpp"
#include "core/status_line/status_line_snapshot.hpp"
#include "core/status_line/turn_memory.hpp"
#include "fuzz/fuzz_target.hpp"
#include "fuzz/reading_checks.hpp"

/// The files in which the relay leaves what it was told.
namespace vorn::fuzz {

void checkInput(std::string_view input) {
    const auto file = scratch("read.json");
    writeFile(file, input);
    if (const auto more = readMoreLimits(file)) {
        for (const OtherLimit& limit : more->limits.others.limits) {
            requireUtf8(limit.name);
        }
        require(more->write(scratch("limits.json")), "more limits are written");
        require(readMoreLimits(scratch("limits.json")) == more, "more limits survive a way through their file");
    }
    const auto turns = scratch("turns.txt");
    writeFile(turns, input);
    require(placeTurn(turns, "{}", kNow).at <= kNow, "no turn is of the future");
    require(!placeTurn(turns, "{}", kNow).isNew, "a turn is known again");
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
