#include "core/wording/activity_text.hpp"

#include <cmath>

#include "core/support/text.hpp"
#include "core/support/unicode/locale_time.hpp"
#include "core/wording/format.hpp"

namespace vorn::Format {
namespace {

using namespace std::chrono_literals;

/// "24 hours", "7 days"
std::string spanText(Seconds span) {
    return span < 48h ? count(std::llround(span / 1h), "hour") : count(std::llround(span / 24h), "day");
}

}  // namespace

std::string whyNoActivity(const Answer& answer) {
    if (!answer.usesActivity) {
        return "Local activity is switched off in the settings.";
    }
    return answer.activity ? "" : "Reading Claude Code's transcripts…";
}

Phrase lastReply(Instant at, Instant now) {
    return words("Last reply ") + figure(clock(at, now));
}

std::string noReplies(Seconds span) {
    return "No replies in the last " + spanText(span) + ".";
}

Phrase bucketText(const ActivitySummary::Bucket& bucket, Seconds width, Instant now) {
    const std::string until = shortTime(bucket.start + width, currentTimeZone());
    return joined({figure(clock(bucket.start, now) + " – " + until),
                   figure(bucket.weight > 0 ? tokens(bucket.weight) + " weighted tokens" : "nothing")});
}

std::string spokenActivity(Seconds span, const ActivitySummary::Bucket& busiest, Instant now) {
    return "Activity in the last " + spanText(span) + ", most at " + clock(busiest.start, now);
}

std::string printedHeading(const UsageInsights::Period& period) {
    return joined({std::string("Claude Code"), period.requests ? count(*period.requests, "request") : "",
                   period.sessions ? count(*period.sessions, "session") : ""});
}

std::string findingText(const UsageInsights::Finding& finding) {
    std::string text = finding.text;
    return text.replace(0, 1, asciiUpper(text.substr(0, 1)));
}

std::string whyNothingPrinted(const UsageInsights::Period* period) {
    if (period == nullptr) {
        return "Claude Code printed no breakdown with its limits.";
    }
    const bool isEmpty = period->findings.empty() && period->topSkills.empty() && period->topSubagents.empty();
    return isEmpty ? "Claude Code printed no findings for this period." : "";
}

}  // namespace vorn::Format
