#pragma once

#include <filesystem>
#include <string_view>

#include "core/support/time.hpp"

/// Claude Code draws a status line again without a turn: every few seconds where it is told to, and at every key. Its
/// limits are then those of the session's last turn, and as old.
namespace vorn {

/// How a run of the relay stands to the runs before it.
struct TurnPlace {
    Instant at;            ///< When the session's turn was first seen.
    bool isNew = true;     ///< No run saw it before.
    bool isLatest = true;  ///< No other session had a later one.
};

/// Looks up the session's turn among the last turns of 32 sessions in `file`, and notes it there when it is a new one:
/// when the limits are others than before, or the input says so ("prompt_id", "cost.total_api_duration_ms"). A damaged
/// file is an empty one; where it cannot be read or written, a turn counts as new. Waits at most 5 ms for other
/// writers.
TurnPlace placeTurn(const std::filesystem::path& file, std::string_view statusLineInput, Instant now) noexcept;

}  // namespace vorn
