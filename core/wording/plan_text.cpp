#include "core/wording/plan_text.hpp"

#include <cmath>

#include "core/support/unicode/locale_time.hpp"
#include "core/wording/format.hpp"

namespace vorn::Format {

std::string nothingPlanned() {
    return "None. Add one when a reset is announced or you expect one, and Vorn will plan each limit it cuts short to "
           "finish by then.";
}

Phrase plannedMoment(const PlannedReset& reset) {
    const TimeZone zone = currentTimeZone();
    return figure(std::isfinite(secondsSince1970(reset.date))
                      ? shortDate(reset.date, zone) + ", " + shortTime(reset.date, zone)
                      : "—");
}

std::string plannedWhen(const PlannedReset& reset, Instant now) {
    return reset.date > now ? "in " + duration(reset.date - now) : "has passed";
}

std::string plannedScope(const PlannedReset& reset) {
    return joined({std::string(label(reset.scope)), reset.note});
}

std::string banked(std::int64_t number) {
    return count(number, "reset") + " banked";
}

}  // namespace vorn::Format
