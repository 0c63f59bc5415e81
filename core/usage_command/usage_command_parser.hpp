#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "core/data/usage_insights.hpp"
#include "core/data/usage_window.hpp"

/// Turns the text that `claude /usage` prints into readings. Pure: no clock, no files; the only thing taken from
/// outside is the system's time zone, for reset times that name none.
namespace vorn::UsageCommandParser {

struct Result {
    std::vector<UsageWindow> windows;       ///< In line order; all from `DataSource::usageCommand`, observed at `now`.
    std::optional<UsageInsights> insights;  ///< Present when at least one period header was recognised.
    /// The text mentions a subscription or holds a window. Deliberately loose: a refusal may mention one too.
    bool isSubscription = false;
    bool operator==(const Result&) const = default;
};

/// Reads the whole text, valid UTF-8 or not; lines that are not understood are skipped.
Result parse(std::string_view text, Instant now);

/// "Current week (Opus): 12% used · resets Nov 26, 4:46am (Europe/Berlin)". An unreadable reset time leaves it absent.
std::optional<UsageWindow> parseWindowLine(std::string_view line, Instant now);
/// "3pm", "15:00", "at 9am", "Jan 5 at 3pm", "Nov 22, 11:16pm", "Jan 2, 2027, 7pm (Europe/Berlin)", "Dec 20, 2025".
std::optional<Instant> parseResetTime(std::string_view text, Instant now);
/// "session", "week (all models)", "week (Opus)".
std::optional<WindowKind> windowKind(std::string_view header);
/// The first number before a "%", anywhere in the text; in percentage points, not clamped.
std::optional<double> leadingPercent(std::string_view text);
/// 1 to 12 for any word that begins like a month.
std::optional<int> monthNumber(std::string_view name);
/// "Last 24h · 133 requests · 9 sessions".
std::optional<UsageInsights::Period> parsePeriodHeader(std::string_view line);
/// The shares of a line that begins with `prefix`; empty list when none of its pieces reads as one.
std::optional<std::vector<UsageInsights::Share>> parseShares(std::string_view line, std::string_view prefix);
/// "71% of your usage came from …", or "71%  title · detail".
std::optional<UsageInsights::Finding> parseFinding(std::string_view line);

}  // namespace vorn::UsageCommandParser
