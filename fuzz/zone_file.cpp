#include "core/support/zone_file.hpp"

#include <cmath>

#include "core/support/unicode/calendar.hpp"
#include "fuzz/fuzz_target.hpp"

/// A zone file of the system's, or the rule that `TZ` may hold.
namespace vorn::fuzz {
namespace {

void requireZone(const TimeZone& zone) {
    using namespace std::chrono_literals;
    const Calendar calendar(zone);
    for (const double seconds : {-1e300, -1e12, -4e9, 0.0, 9e8, 4e9, 1e12, 1e300, std::nan("")}) {
        const Instant instant = instantSince1970(seconds);
        require(std::abs(zone.offset(instant) / 1h) <= 27, "an offset is one that a clock could show");
        const auto wall = calendar.wallTime(instant);
        require(!wall || (wall->hour < 24 && wall->minute < 60 && wall->day <= 31), "a clock shows a time of day");
    }
    for (Instant day = kNow; day < kNow + 24h * 800; day += 31h) {
        const auto later = calendar.addDays(day, 1);
        require(later && std::abs((*later - day) / 1h) <= 96, "the next day comes");
    }
}

}  // namespace

void checkInput(std::string_view input) {
    for (const auto& zone : {readZoneFile(input), readZoneRule(input)}) {
        if (zone) {
            requireZone(*zone);
        }
    }
}

}  // namespace vorn::fuzz
