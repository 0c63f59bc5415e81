#include "core/support/zone_offsets.hpp"

#include <algorithm>
#include <cmath>

namespace vorn {
namespace {

constexpr double kSecondsAnHour = 3600;
constexpr double kFurthest = 3e13;  // seconds, so that hours fit their type

double localSeconds(Instant instant, Seconds offset) {
    const double seconds = secondsSince1970(instant + offset);
    return std::isfinite(seconds) ? std::clamp(seconds, -kFurthest, kFurthest) : 0;
}

}  // namespace

ZoneOffsets::ZoneOffsets(std::vector<Change> changes) : m_changes(std::move(changes)) {
    std::erase_if(m_changes, [](const Change& change) {
        return !std::isfinite(secondsSince1970(change.from)) || !std::isfinite(change.offset.count());
    });
    std::ranges::stable_sort(m_changes, {}, &Change::from);
}

Seconds ZoneOffsets::offset(Instant instant) const {
    if (m_changes.empty()) {
        return {};
    }
    const auto next = std::ranges::upper_bound(m_changes, instant, {}, &Change::from);
    return next == m_changes.begin() ? next->offset : std::prev(next)->offset;
}

std::int64_t ZoneOffsets::hour(Instant instant) const {
    return static_cast<std::int64_t>(std::floor(localSeconds(instant, offset(instant)) / kSecondsAnHour));
}

Instant ZoneOffsets::nextHour(Instant instant) const {
    const double local = localSeconds(instant, offset(instant));
    const Instant full = instant + Seconds{(std::floor(local / kSecondsAnHour) + 1) * kSecondsAnHour - local};
    const auto change = std::ranges::upper_bound(m_changes, instant, {}, &Change::from);
    return change == m_changes.end() ? full : std::min(full, change->from);
}

}  // namespace vorn
