#include "core/wording/outcome_text.hpp"

#include <chrono>

#include "core/support/text.hpp"
#include "core/support/unicode/locale_time.hpp"
#include "core/wording/format.hpp"

namespace vorn::Format {
namespace {

using namespace std::chrono_literals;

constexpr double kLimit = 100.0;  // percent
/// A share that is older than this at the end says little of where the window ended.
constexpr Seconds kOld = 30min;

std::string landedText(const Outcome& outcome) {
    std::string text =
        outcome.usedPercent >= kLimit ? "ended at its limit" : "ended at " + percent(outcome.usedPercent);
    if (outcome.readAt && outcome.at - *outcome.readAt > kOld) {
        text += ", read " + duration(outcome.at - *outcome.readAt) + " before";
    }
    return text;
}

/// "The session", "The Sonnet week".
std::string subject(const WindowKind& kind) {
    const bool isModel = kind.which() == WindowKind::Case::weekModel;
    return "The " + (isModel ? kind.modelName() + " week" : asciiLower(kind.title()));
}

}  // namespace

std::string outcomeText(const Outcome& outcome) {
    switch (outcome.event) {
        case Outcome::Event::reachedLimit:
            return outcome.origin == Outcome::Origin::refusedTurn ? "reached its limit, a turn was refused"
                                                                  : "reached its limit";
        case Outcome::Event::resetEarly:
            return "was reset early, at " + percent(outcome.usedPercent);
        case Outcome::Event::moved:
            return outcome.nextResetsAt ? "got another reset time: " + dateAndTime(*outcome.nextResetsAt)
                                        : "got another reset time";
        case Outcome::Event::landed:
            break;
    }
    return landedText(outcome);
}

std::string movedText(const Outcome& outcome, Instant now) {
    std::string text = subject(outcome.kind) + " now resets " + clock(outcome.nextResetsAt.value_or(outcome.at), now);
    return outcome.resetsAt ? text + ", was " + clock(*outcome.resetsAt, now) : text;
}

std::string dateAndTime(Instant instant) {
    const TimeZone zone = currentTimeZone();
    return shortDate(instant, zone) + " " + shortTime(instant, zone);
}

}  // namespace vorn::Format
