#pragma once

#include <span>

#include "core/analysis/history_index.hpp"
#include "core/data/usage_insights.hpp"
#include "core/data/usage_window.hpp"

namespace vorn::fuzz {

/// What holds for every reading, whatever it was read from: its numbers are finite, its texts valid, and it is the same
/// after a way through the files.
void requireSound(const UsageWindow& window);
/// The same for what the client prints below its limits.
void requireSound(const UsageInsights& insights);

/// Judges the readings as the status report does, and puts the judgement in words.
void requireAssessable(std::span<const UsageWindow> windows, const HistoryIndex& history);

}  // namespace vorn::fuzz
