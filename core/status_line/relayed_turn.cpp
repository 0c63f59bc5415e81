#include "core/status_line/relayed_turn.hpp"

#include "core/data/vorn_paths.hpp"
#include "core/status_line/more_limits.hpp"
#include "core/status_line/status_line_snapshot.hpp"
#include "core/status_line/turn_memory.hpp"

namespace vorn {
namespace {

void leaveMoreLimits(std::string_view statusLineInput, Instant at) noexcept try {
    if (const auto more = MoreLimits::from(statusLineInput, at)) {
        // Once more with the next turn, when others were in the way.
        [[maybe_unused]] const bool isWritten = more->write(VornPaths::moreLimits());
    }
} catch (...) {
    // The snapshot comes all the same.
}

}  // namespace

void leaveTurn(std::string_view statusLineInput, Instant now) noexcept try {
    auto snapshot = StatusLineSnapshot::from(statusLineInput, now);
    if (!snapshot && !MoreLimits::from(statusLineInput, now)) {
        return;
    }
    const TurnPlace place = placeTurn(VornPaths::statusLineTurns(), statusLineInput, now);
    if (!place.isLatest) {
        return;
    }
    if (place.isNew) {
        // Before the snapshot, which is what others watch.
        leaveMoreLimits(statusLineInput, place.at);
    }
    if (snapshot) {
        const auto file = VornPaths::statusLineSnapshot();
        snapshot->observedAt = place.at;
        if (place.isNew || StatusLineSnapshot::read(file) != snapshot) {
            snapshot->write(file);
        }
    }
} catch (...) {
    // Then this turn is not seen.
}

}  // namespace vorn
