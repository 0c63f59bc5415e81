#include "core/support/unicode/calendar.hpp"

#include <chrono>
#include <cstdint>

namespace vorn {
namespace {

using std::chrono::sys_days;
using std::chrono::year;

constexpr Instant kFirst = sys_days{year::min() / 1 / 1};
constexpr Instant kEnd = sys_days{year::max() / 12 / 31};

/// What a clock shows, as if it were UTC; false for what is no number as well.
bool isWithin(Instant shown) {
    return shown >= kFirst && shown < kEnd;
}

}  // namespace

std::optional<WallTime> Calendar::wallTime(Instant instant) const {
    const Instant shown = m_zone.shown(instant);
    if (!isWithin(shown)) {
        return std::nullopt;
    }
    const auto day = std::chrono::floor<std::chrono::days>(shown);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss time{std::chrono::floor<std::chrono::minutes>(shown - day)};
    return WallTime{.year = static_cast<int>(date.year()),
                    .month = static_cast<int>(static_cast<unsigned>(date.month())),
                    .day = static_cast<int>(static_cast<unsigned>(date.day())),
                    .hour = static_cast<int>(time.hours().count()),
                    .minute = static_cast<int>(time.minutes().count())};
}

std::optional<Instant> Calendar::instant(const WallTime& time) const {
    using std::chrono::days;
    using std::chrono::hours;
    using std::chrono::minutes;
    constexpr std::int64_t kMonths = 12;
    const std::int64_t months = std::int64_t{time.year} * kMonths + time.month - 1;
    const std::int64_t years = (months - (months % kMonths + kMonths) % kMonths) / kMonths;
    if (years < static_cast<int>(year::min()) || years > static_cast<int>(year::max())) {
        return std::nullopt;
    }
    const std::chrono::month month{static_cast<unsigned>(months - years * kMonths) + 1};
    const Instant shown = Instant{sys_days{year{static_cast<int>(years)} / month / 1}} + days{time.day} - days{1} +
                          hours{time.hour} + minutes{time.minute};
    return isWithin(shown) ? std::optional(m_zone.whenShown(shown)) : std::nullopt;
}

std::optional<Instant> Calendar::addDays(Instant instant, int days) const {
    const Instant shown = m_zone.shown(instant) + std::chrono::days{days};
    return isWithin(shown) ? std::optional(m_zone.whenShown(shown)) : std::nullopt;
}

}  // namespace vorn
