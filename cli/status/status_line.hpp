#pragma once

#include <string>

#include "core/analysis/answer.hpp"

/// The status in one line, for bars and prompts.
namespace vorn::cli {

/// "▲ 72% · Limit in ~1h 10m at this pace": the most urgent window and its verdict; "–" and the reason without a
/// reading.
std::string plainLine(const Answer& answer);

/// "5h 72% ↓0.6×" in tmux's own colour marks; empty without a reading, so that a segment vanishes.
std::string tmuxSegment(const Answer& answer);

/// One JSON object: text, tooltip, class (comfortable, watch, at-risk, limited, unknown), percentage.
std::string waybarModule(const Answer& answer);

}  // namespace vorn::cli
