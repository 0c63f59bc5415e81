#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "core/data/activity/activity_event.hpp"
#include "core/data/history_sample.hpp"

/// What Vorn knows as tables for other programs. Both forms have one record per reading or reply with the same fields,
/// in the given order. Times are ISO 8601 in UTC, to the millisecond.
namespace vorn {

enum class ExportFormat : std::uint8_t {
    csv,   ///< Comma-separated with a line of names and CR LF. A text that a spreadsheet would compute gets a quote
           ///< mark.
    json,  ///< An array of objects, one a line; absent values are left out.
};

/// Fields: observedAt, window ("session", "week", "week:Opus"), usedPercent, resetsAt. A record with a number that is
/// not finite is left out, since neither form can express it.
std::string exportHistory(std::span<const HistorySample> samples, ExportFormat format);

/// Fields: timestamp, project, model, inputTokens, outputTokens, cacheReadTokens, cacheWrite5mTokens,
/// cacheWrite1hTokens, weight (cost-weighted tokens).
std::string exportActivity(std::span<const ActivityEvent> events, ExportFormat format);

}  // namespace vorn
