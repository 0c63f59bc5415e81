#include "core/support/time.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace vorn {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Takes pieces off the front of a text; once something did not fit, everything after fails too.
class Reader {
public:
    explicit Reader(std::string_view text) : m_rest(text) {}

    int number(std::size_t digits) {
        if (m_rest.size() < digits) {
            m_ok = false;
        }
        int value = 0;
        for (std::size_t i = 0; m_ok && i < digits; ++i) {
            m_ok = isDigit(m_rest[i]);
            value = value * 10 + (m_rest[i] - '0');
        }
        if (m_ok) {
            m_rest.remove_prefix(digits);
        }
        return value;
    }

    bool accept(char wanted) {
        if (!m_ok || m_rest.empty() || m_rest.front() != wanted) {
            return false;
        }
        m_rest.remove_prefix(1);
        return true;
    }

    void expect(char wanted) { require(accept(wanted)); }
    void require(bool condition) { m_ok = m_ok && condition; }

    /// The digits after a full stop as a share of a second.
    double fraction() {
        // Beyond 15 digits nothing changes in a double, and the integer stays exact.
        constexpr std::size_t kSignificant = 15;
        const auto end = std::find_if_not(m_rest.begin(), m_rest.end(), isDigit);
        const auto length = static_cast<std::size_t>(end - m_rest.begin());
        m_ok = m_ok && length > 0;
        double digits = 0;
        double scale = 1;
        for (std::size_t i = 0; i < std::min(length, kSignificant); ++i) {
            digits = digits * 10 + (m_rest[i] - '0');
            scale *= 10;
        }
        m_rest.remove_prefix(length);
        return digits / scale;
    }

    [[nodiscard]] bool complete() const { return m_ok && m_rest.empty(); }

private:
    std::string_view m_rest;
    bool m_ok = true;
};

/// Minutes east of UTC.
int zoneOffset(Reader& reader) {
    if (reader.accept('Z') || reader.accept('z')) {
        return 0;
    }
    const int sign = reader.accept('-') ? -1 : 1;
    if (sign > 0) {
        reader.expect('+');
    }
    const int hours = reader.number(2);
    reader.accept(':');
    const int minutes = reader.number(2);
    reader.require(hours <= 23 && minutes <= 59);
    return sign * (hours * 60 + minutes);
}

struct Parts {
    std::chrono::year_month_day date;
    std::chrono::hh_mm_ss<std::chrono::milliseconds> time;
};

/// A file may hold any number, and those beyond the calendar's years are none that an integer could count.
Instant withinCalendar(Instant instant) {
    using std::chrono::sys_days;
    using std::chrono::year;
    constexpr double kFirst = secondsSince1970(sys_days{year::min() / 1 / 1});
    constexpr double kLast = secondsSince1970(sys_days{year::max() / 12 / 31});
    return instantSince1970(std::fmin(std::fmax(secondsSince1970(instant), kFirst), kLast));
}

Parts split(Instant instant) {
    const auto ms = std::chrono::floor<std::chrono::milliseconds>(withinCalendar(instant));
    const auto day = std::chrono::floor<std::chrono::days>(ms);
    return {.date = day, .time = std::chrono::hh_mm_ss{ms - day}};
}

std::string formatSeconds(const Parts& parts) {
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", static_cast<int>(parts.date.year()),
                       static_cast<unsigned>(parts.date.month()), static_cast<unsigned>(parts.date.day()),
                       parts.time.hours().count(), parts.time.minutes().count(), parts.time.seconds().count());
}

}  // namespace

Instant systemNow() {
    return std::chrono::system_clock::now();
}

bool isPlausible(Instant instant) {
    using namespace std::chrono;
    return instant >= sys_days{year{1970} / January / 1} && instant < sys_days{year{10000} / January / 1};
}

std::optional<Instant> parseIso8601(std::string_view text, Fraction fraction) {
    Reader reader(text);
    const std::chrono::year year{reader.number(4)};
    reader.expect('-');
    const std::chrono::month month{static_cast<unsigned>(reader.number(2))};
    reader.expect('-');
    const std::chrono::day day{static_cast<unsigned>(reader.number(2))};
    reader.expect('T');
    const int hour = reader.number(2);
    reader.expect(':');
    const int minute = reader.number(2);
    reader.expect(':');
    const int second = reader.number(2);
    double share = 0;
    if (fraction != Fraction::forbidden && reader.accept('.')) {
        share = reader.fraction();
    } else if (fraction == Fraction::required) {
        return std::nullopt;
    }
    const int offset = zoneOffset(reader);
    const std::chrono::year_month_day date{year, month, day};
    constexpr int kLeapSecond = 60;
    if (!reader.complete() || !date.ok() || hour > 23 || minute > 59 || second > kLeapSecond) {
        return std::nullopt;
    }
    const auto whole = std::chrono::sys_days{date} + std::chrono::hours{hour} + std::chrono::minutes{minute - offset} +
                       std::chrono::seconds{second};
    // A zone can carry the first and the last day into years that have no four digits and could not be written again.
    const auto utcYear = std::chrono::year_month_day{std::chrono::floor<std::chrono::days>(whole)}.year();
    if (utcYear < std::chrono::year{0} || utcYear > std::chrono::year{9999}) {
        return std::nullopt;
    }
    return Instant{whole} + Seconds{share};
}

std::string formatIso8601(Instant instant) {
    return formatSeconds(split(instant)) + "Z";
}

std::string formatIso8601Milliseconds(Instant instant) {
    const Parts parts = split(instant);
    return fmt::format("{}.{:03}Z", formatSeconds(parts), parts.time.subseconds().count());
}

}  // namespace vorn
