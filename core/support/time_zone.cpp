#include "core/support/time_zone.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace vorn {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using std::chrono::year;

/// No zone is, or ever was, further from UTC.
constexpr Seconds kFurthest = 16h;

Instant startOf(const YearlyDay& day, year in) {
    using std::chrono::days;
    const sys_days newYear{in / 1 / 1};
    constexpr unsigned kFirstOfMarch = 60;
    switch (day.form) {
        case YearlyDay::Form::ofYear:
            return newYear + days{day.number} + day.time;
        case YearlyDay::Form::ofCommonYear:
            return newYear + days{day.number - 1 + (in.is_leap() && day.number >= kFirstOfMarch ? 1U : 0U)} + day.time;
        case YearlyDay::Form::ofMonth:
            break;
    }
    const std::chrono::weekday weekday{day.number};
    const std::chrono::month month{day.month};
    constexpr unsigned kLast = 5;
    return (day.week == kLast ? sys_days{in / month / weekday[std::chrono::last]}
                              : sys_days{in / month / weekday[day.week]}) +
           day.time;
}

}  // namespace

Seconds YearlyOffsets::offset(Instant instant) const {
    constexpr Instant kFirst = sys_days{year{-30000} / 1 / 1};
    constexpr Instant kLast = sys_days{year{30000} / 1 / 1};
    if (!summer || !(instant > kFirst && instant < kLast)) {
        return standard;
    }
    const auto current = std::chrono::year_month_day{std::chrono::floor<std::chrono::days>(instant + standard)}.year();
    // A rule may place a change days before or after its year. Of two at the same moment the later year's counts:
    // that is how a summer time without an end is written.
    std::array<ZoneOffsets::Change, 6> changes;
    for (std::size_t i = 0; i < 3; ++i) {
        const year in = current + std::chrono::years{static_cast<int>(i) - 1};
        changes[2 * i] = {startOf(summer->begin, in) - standard, summer->offset};
        changes[2 * i + 1] = {startOf(summer->end, in) - summer->offset, standard};
    }
    std::ranges::stable_sort(changes, {}, &ZoneOffsets::Change::from);
    const auto next = std::ranges::upper_bound(changes, instant, {}, &ZoneOffsets::Change::from);
    return next == changes.begin() ? standard : std::prev(next)->offset;
}

TimeZone::TimeZone(std::vector<ZoneOffsets::Change> changes, std::optional<YearlyOffsets> after) {
    std::optional<Instant> last;
    for (const ZoneOffsets::Change& change : changes) {
        last = last ? std::max(*last, change.from) : change.from;
    }
    m_rules = std::make_shared<const Rules>(Rules{ZoneOffsets(std::move(changes)), last, after});
}

Seconds TimeZone::offset(Instant instant) const {
    if (!m_rules) {
        return {};
    }
    const bool isAfter = !m_rules->last || instant >= *m_rules->last;
    return m_rules->after && isAfter ? m_rules->after->offset(instant) : m_rules->changes.offset(instant);
}

Instant TimeZone::whenShown(Instant shown) const {
    const Seconds before = offset(shown - kFurthest);
    if (offset(shown - before) == before) {
        return shown - before;
    }
    const Seconds after = offset(shown + kFurthest);
    return offset(shown - after) == after ? shown - after : shown - before;
}

}  // namespace vorn
