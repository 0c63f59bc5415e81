#include <nlohmann/json.hpp>

#include "core/status_line/more_limits.hpp"
#include "core/status_line/status_line_snapshot.hpp"
#include "core/status_line/turn_memory.hpp"
#include "fuzz/fuzz_target.hpp"
#include "fuzz/reading_checks.hpp"

/// What Claude Code hands the relay on standard input.
namespace vorn::fuzz {

namespace {

void checkTurn(std::string_view input) {
    if (const auto more = MoreLimits::from(input, kNow)) {
        for (const UsageWindow& window : more->limits.windows) {
            requireSound(window);
        }
        const auto file = scratch("limits.json");
        require(more->write(file), "more limits are written");
        require(readMoreLimits(file) == more, "more limits are the same after a way through their file");
    }
    const auto turns = scratch("turns.txt");
    std::filesystem::remove(turns);
    require(placeTurn(turns, input, kNow).isNew, "a first turn is new");
    const TurnPlace again = placeTurn(turns, input, kNow + std::chrono::hours{1});
    require(!again.isNew && again.isLatest && again.at == kNow, "a turn is known again");
}

}  // namespace

void checkInput(std::string_view input) {
    checkTurn(input);
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
