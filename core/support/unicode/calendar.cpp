#include "core/support/unicode/calendar.hpp"

#include <cmath>

#include <unicode/gregocal.h>

#include "core/support/unicode/icu_conversion.hpp"

namespace vorn {

class Calendar::Icu {
public:
    explicit Icu(std::string_view zoneId) : calendar(makeIcuZone(zoneId).release(), icu::Locale::getRoot(), status) {
        calendar.setLenient(1);
        calendar.setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
        calendar.setSkippedWallTimeOption(UCAL_WALLTIME_LAST);  // which is the one that moves forward
    }

    UErrorCode status = U_ZERO_ERROR;  ///< Of the construction; handed on, an error makes every later call fail, too.
    icu::GregorianCalendar calendar;
};

Calendar::Calendar(std::string_view zoneId) : m_icu(std::make_unique<Icu>(zoneId)) {}

Calendar::~Calendar() = default;

std::optional<WallTime> Calendar::wallTime(Instant instant) {
    if (!std::isfinite(secondsSince1970(instant))) {
        return std::nullopt;
    }
    UErrorCode status = m_icu->status;
    auto& calendar = m_icu->calendar;
    calendar.setTime(toIcuDate(instant), status);
    const WallTime time{.year = calendar.get(UCAL_EXTENDED_YEAR, status),
                        .month = calendar.get(UCAL_MONTH, status) + 1,
                        .day = calendar.get(UCAL_DATE, status),
                        .hour = calendar.get(UCAL_HOUR_OF_DAY, status),
                        .minute = calendar.get(UCAL_MINUTE, status)};
    return U_SUCCESS(status) != 0 ? std::optional(time) : std::nullopt;
}

std::optional<Instant> Calendar::instant(const WallTime& time) {
    UErrorCode status = m_icu->status;
    auto& calendar = m_icu->calendar;
    calendar.clear();
    calendar.set(UCAL_EXTENDED_YEAR, time.year);
    calendar.set(UCAL_MONTH, time.month - 1);
    calendar.set(UCAL_DATE, time.day);
    calendar.set(UCAL_HOUR_OF_DAY, time.hour);
    calendar.set(UCAL_MINUTE, time.minute);
    const UDate date = calendar.getTime(status);
    return U_SUCCESS(status) != 0 ? std::optional(fromIcuDate(date)) : std::nullopt;
}

std::optional<Instant> Calendar::addDays(Instant instant, int days) {
    if (!std::isfinite(secondsSince1970(instant))) {
        return std::nullopt;
    }
    UErrorCode status = m_icu->status;
    auto& calendar = m_icu->calendar;
    calendar.setTime(toIcuDate(instant), status);
    calendar.add(UCAL_DATE, days, status);
    const UDate date = calendar.getTime(status);
    return U_SUCCESS(status) != 0 ? std::optional(fromIcuDate(date)) : std::nullopt;
}

}  // namespace vorn
