#pragma once

#include <string>

#include "core/analysis/answer.hpp"
#include "core/wording/phrase.hpp"

/// What is said of local activity, and of what the client printed about it.
namespace vorn::Format {

/// Why there is no local activity to show, whatever was done; empty when there may be some.
std::string whyNoActivity(const Answer& answer);

Phrase lastReply(Instant at, Instant now);  ///< "Last reply Thu 20:44"
/// "No replies in the last 24 hours.": `span` in whole hours, from two days on in whole days.
std::string noReplies(Seconds span);

/// "19:10 – 19:20 · 84k weighted tokens". `now`: the weekday is told unless the bucket begins on this day.
Phrase bucketText(const ActivitySummary::Bucket& bucket, Seconds width, Instant now);
/// "Activity in the last 24 hours, most at 14:30", for a screen reader.
std::string spokenActivity(Seconds span, const ActivitySummary::Bucket& busiest, Instant now);

/// "Claude Code · 133 requests · 9 sessions"
std::string printedHeading(const UsageInsights::Period& period);
/// What the client printed behind the percentage, begun with a capital: "Of your usage came from …".
std::string findingText(const UsageInsights::Finding& finding);
/// Why no finding of the client is shown. `period`: the one chosen; null when none was printed.
std::string whyNothingPrinted(const UsageInsights::Period* period);

}  // namespace vorn::Format
