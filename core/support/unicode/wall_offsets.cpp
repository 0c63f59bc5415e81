#include "core/support/unicode/wall_offsets.hpp"

#include <cmath>

namespace vorn {
namespace {

using namespace std::chrono_literals;

constexpr Seconds kLongest = 24h * 3653;

}  // namespace

ZoneOffsets wallOffsets(const TimeZone& zone, Instant from, Instant to) {
    std::vector<ZoneOffsets::Change> changes;
    if (!(to > from) || !(to - from <= kLongest)) {
        return ZoneOffsets{};
    }
    Instant known = from;
    Seconds offset = zone.offset(from);
    changes.push_back({from, offset});
    while (known < to) {
        const Instant next = std::min<Instant>(known + 24h, to);
        if (const Seconds later = zone.offset(next); later != offset) {
            Instant before = known;
            Instant after = next;
            while (after - before > 1min) {
                const Instant middle = before + (after - before) / 2;
                (zone.offset(middle) == offset ? before : after) = middle;
            }
            changes.push_back({Instant{Seconds{std::floor(secondsSince1970(after) / 60) * 60}}, later});
            offset = later;
        }
        known = next;
    }
    return ZoneOffsets(std::move(changes));
}

}  // namespace vorn
