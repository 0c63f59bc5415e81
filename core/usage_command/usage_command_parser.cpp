#include "core/usage_command/usage_command_parser.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <locale>
#include <sstream>
#include <string>
#include <utility>

#include "core/support/text.hpp"
#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/regular_expression.hpp"
#include "core/support/unicode/text.hpp"
#include "core/support/unicode/time_zone.hpp"

namespace vorn::UsageCommandParser {
namespace {

using namespace std::chrono_literals;
using Finding = UsageInsights::Finding;
using Period = UsageInsights::Period;
using Share = UsageInsights::Share;

/// In characters. The longest real line has a few hundred; of one that is longer than this, the rest is not looked at.
constexpr std::size_t kLongestLine = std::size_t{64} << 10U;

/// A time of day that passed less than this ago is the reset just happening, not tomorrow's.
constexpr Seconds kTimeTolerance = 5min;
/// The same for a date without a year: output may be late, and clocks differ.
constexpr Seconds kDateTolerance = 48h;

constexpr std::string_view kWindowPrefix = "current ";
constexpr std::string_view kPeriodPrefix = "Last ";
constexpr std::string_view kMiddleDot = "·";

// The quantifiers that take all they can get and never give back (`++`), and the look-behinds, change nothing about
// what matches. They keep the work proportional to the text, be it a megabyte of blanks or of digits.

const RegularExpression& percentPattern() {
    static const RegularExpression pattern(R"((?<!\d)(\d++(?:\.\d++)?)\s*+%)");
    return pattern;
}

/// The rest of the line behind the first "resets ".
const RegularExpression& resetsPattern() {
    static const RegularExpression pattern(R"((?is)resets (.*))");
    return pattern;
}

/// 1 month, 2 day, 3 year, 4 hour, 5 minute, 6 am or pm. Some systems put "at" between date and time, others a comma.
const RegularExpression& resetTimePattern() {
    static const RegularExpression pattern(
        R"((?i)^(?:([A-Za-z]{3,9})\.?\s+(\d{1,2})(?:,?\s+(\d{4}))?,?\s+(?:at\s+)?|at\s+)?)"
        R"((\d{1,2})(?::(\d{2}))?\s*([ap]m)?$)");
    return pattern;
}

/// 1 month, 2 day, 3 year.
const RegularExpression& bareDatePattern() {
    static const RegularExpression pattern(R"((?i)^([A-Za-z]{3,9})\.?\s+(\d{1,2})(?:,?\s+(\d{4}))?$)");
    return pattern;
}

/// "71% of your usage came from subagent-heavy sessions".
const RegularExpression& sentencePattern() {
    static const RegularExpression pattern(R"(^(\d++(?:\.\d++)?)%\s++of your usage\s+(.+)$)");
    return pattern;
}

/// "71%  Check which models your subagents use · share covers …": two blanks tell it from a number in a sentence.
const RegularExpression& titlePattern() {
    static const RegularExpression pattern(R"(^(\d++(?:\.\d++)?)%\s{2,}+(.+)$)");
    return pattern;
}

/// The blanks and the number behind a share's name; the character before them is the name's last.
const RegularExpression& sharePattern() {
    static const RegularExpression pattern(R"(^(.+?)(?<!\s)\s++(\d++(?:\.\d++)?)%)");
    return pattern;
}

/// Digits with at most one full stop, whatever the program's locale says about commas. Empty for digits other than
/// ASCII and for a number too large.
std::optional<double> decimal(const std::string& digits) {
    std::istringstream stream(digits);
    stream.imbue(std::locale::classic());
    double value = 0;
    stream >> value;
    const bool isWhole = !stream.fail() && stream.peek() == std::istringstream::traits_type::eof();
    return isWhole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// Base 10, ASCII digits only.
template <typename Integer>
std::optional<Integer> integer(std::string_view digits) {
    Integer value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size() ? std::optional(value) : std::nullopt;
}

std::optional<int> integer(const std::optional<std::string>& digits) {
    return digits ? integer<int>(*digits) : std::nullopt;
}

/// Cuts the text up to `separator` off the front of `rest`, without the blanks around it; all of it when there is none.
std::string_view takePiece(std::string_view& rest, std::string_view separator) {
    const auto at = rest.find(separator);
    const std::string_view piece = rest.substr(0, at);
    rest = at == std::string_view::npos ? std::string_view() : rest.substr(at + separator.size());
    return trimBlanks(piece);
}

struct Parenthesised {
    std::string_view before;
    std::string_view inner;  ///< Without the blanks around it.
};

/// What stands between the parenthesis at `open` and the last closing one. Empty unless that comes after it.
std::optional<Parenthesised> parenthesised(std::string_view text, std::size_t open) {
    const auto close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
        return std::nullopt;
    }
    return Parenthesised{.before = text.substr(0, open), .inner = trimBlanks(text.substr(open + 1, close - open - 1))};
}

/// A reset time in the parts that were printed.
struct PrintedTime {
    std::optional<std::string> month;  ///< Absent for a time of today or tomorrow; then day and year mean nothing.
    std::optional<int> day;
    std::optional<int> year;
    int hour = 0;
    int minute = 0;
};

/// "pm" and "am" on the hour as printed; hours they do not fit ("13pm") stay as they are.
int hourOfDay(int printed, const std::optional<std::string>& half) {
    const std::string lower = half ? lowerCased(*half) : std::string();
    if (lower == "pm" && printed < 12) {
        return printed + 12;
    }
    return lower == "am" && printed == 12 ? 0 : printed;
}

std::optional<PrintedTime> readPrintedTime(std::string_view text) {
    if (const auto match = resetTimePattern().firstMatch(text)) {
        const auto hour = integer((*match)[4]);
        if (!hour) {
            return std::nullopt;
        }
        return PrintedTime{.month = (*match)[1],
                           .day = integer((*match)[2]),
                           .year = integer((*match)[3]),
                           .hour = hourOfDay(*hour, (*match)[6]),
                           .minute = integer((*match)[5]).value_or(0)};
    }
    if (const auto match = bareDatePattern().firstMatch(text)) {
        return PrintedTime{.month = (*match)[1], .day = integer((*match)[2]), .year = integer((*match)[3])};
    }
    return std::nullopt;
}

/// Today's, or tomorrow's when today's has passed.
std::optional<Instant> resolveTime(const PrintedTime& printed, const Calendar& calendar, WallTime today, Instant now) {
    today.hour = printed.hour;
    today.minute = printed.minute;
    const auto candidate = calendar.instant(today);
    return candidate && *candidate < now - kTimeTolerance ? calendar.addDays(*candidate, 1) : candidate;
}

/// Of the printed year; without one, this year's, or next year's when this year's has passed.
std::optional<Instant> resolveDate(const PrintedTime& printed, const Calendar& calendar, const WallTime& today,
                                   Instant now) {
    const auto month = monthNumber(*printed.month);
    if (!month || !printed.day) {
        return std::nullopt;
    }
    WallTime time{.year = printed.year.value_or(today.year),
                  .month = *month,
                  .day = *printed.day,
                  .hour = printed.hour,
                  .minute = printed.minute};
    const auto candidate = calendar.instant(time);
    if (printed.year || !candidate || *candidate >= now - kDateTolerance) {
        return candidate;
    }
    ++time.year;
    return calendar.instant(time);
}

/// The number at the front of the first piece that ends with `word` in the singular or plural.
std::optional<std::int64_t> numberBefore(std::string_view word, std::string_view pieces) {
    while (!pieces.empty()) {
        std::string_view piece = takePiece(pieces, kMiddleDot);
        if (!piece.ends_with(word) && !(piece.ends_with('s') && piece.substr(0, piece.size() - 1).ends_with(word))) {
            continue;
        }
        std::string digits;
        for (; !piece.empty() && (piece.front() == ',' || (piece.front() >= '0' && piece.front() <= '9'));
             piece.remove_prefix(1)) {
            if (piece.front() != ',') {
                digits += piece.front();
            }
        }
        // A numeral of another script belongs to the number, and makes one that cannot be read.
        return startsWithNumeral(piece) ? std::nullopt : integer<std::int64_t>(digits);
    }
    return std::nullopt;
}

/// A line inside a period's block.
void readDetail(std::string_view line, Period& period) {
    if (auto skills = parseShares(line, "Top skills:")) {
        period.topSkills = *std::move(skills);
    } else if (auto subagents = parseShares(line, "Top subagents:")) {
        period.topSubagents = *std::move(subagents);
    } else if (auto finding = parseFinding(line)) {
        period.findings.push_back(*std::move(finding));
    }
}

}  // namespace

Result parse(std::string_view text, Instant now) {
    const std::string repaired = repairUtf8(text);
    Result result;
    std::vector<Period> periods;
    for (std::string_view rest = repaired; !rest.empty();) {
        const std::string_view line = trimBlanks(firstCodePoints(takeLine(rest), kLongestLine));
        if (auto window = parseWindowLine(line, now)) {
            result.windows.push_back(*std::move(window));
        } else if (auto period = parsePeriodHeader(line)) {
            periods.push_back(*std::move(period));
        } else if (!periods.empty()) {
            readDetail(line, periods.back());
        }
    }
    if (!periods.empty()) {
        result.insights = UsageInsights{.periods = std::move(periods), .observedAt = now};
    }
    result.isSubscription = !result.windows.empty() || containsIgnoringCase(repaired, "subscription");
    return result;
}

std::optional<UsageWindow> parseWindowLine(std::string_view line, Instant now) {
    const std::string_view opening = firstCodePoints(line, kWindowPrefix.size());
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || lowerCased(opening) != kWindowPrefix) {
        return std::nullopt;
    }
    auto kind = windowKind(trimBlanks(line.substr(opening.size(), colon - opening.size())));
    const std::string_view rest = line.substr(colon + 1);
    const auto percent = kind ? leadingPercent(rest) : std::nullopt;
    if (!percent) {
        return std::nullopt;
    }
    const auto resets = resetsPattern().firstMatch(rest);
    return UsageWindow{.kind = *std::move(kind),
                       .usedPercent = *percent,
                       .resetsAt = resets ? parseResetTime(*(*resets)[1], now) : std::nullopt,
                       .observedAt = now,
                       .source = DataSource::usageCommand};
}

std::optional<Instant> parseResetTime(std::string_view text, Instant now) {
    std::string_view time = trimBlanks(text);
    std::string_view zone;
    if (const auto suffix = parenthesised(time, time.rfind('('))) {
        zone = suffix->inner;
        time = trimBlanks(suffix->before);
    }
    const auto printed = readPrintedTime(time);
    if (!printed) {
        return std::nullopt;
    }
    const auto named = timeZoneNamed(zone);
    const Calendar calendar(named ? *named : currentTimeZone());
    const auto today = calendar.wallTime(now);
    if (!today) {
        return std::nullopt;
    }
    return printed->month ? resolveDate(*printed, calendar, *today, now) : resolveTime(*printed, calendar, *today, now);
}

std::optional<WindowKind> windowKind(std::string_view header) {
    const std::string lower = lowerCased(header);
    if (lower == "session") {
        return WindowKind::session();
    }
    if (!lower.starts_with("week")) {
        return std::nullopt;
    }
    const auto model = parenthesised(header, header.find('('));
    if (!model || model->inner.empty() || lowerCased(model->inner) == "all models") {
        return WindowKind::week();
    }
    return WindowKind::weekModel(std::string(model->inner));
}

std::optional<double> leadingPercent(std::string_view text) {
    const auto match = percentPattern().firstMatch(text);
    return match ? decimal(*(*match)[1]) : std::nullopt;
}

std::optional<int> monthNumber(std::string_view name) {
    constexpr std::array<std::string_view, 12> kMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                                          "jul", "aug", "sep", "oct", "nov", "dec"};
    const std::string lower = lowerCased(name);
    const std::string_view beginning = firstCodePoints(lower, 3);
    for (std::size_t i = 0; i < kMonths.size(); ++i) {
        if (kMonths[i] == beginning) {
            return static_cast<int>(i) + 1;
        }
    }
    return std::nullopt;
}

std::optional<Period> parsePeriodHeader(std::string_view line) {
    if (!line.starts_with(kPeriodPrefix)) {
        return std::nullopt;
    }
    Period period;
    period.label = takePiece(line, kMiddleDot);
    period.requests = numberBefore("request", line);
    period.sessions = numberBefore("session", line);
    return period;
}

std::optional<std::vector<Share>> parseShares(std::string_view line, std::string_view prefix) {
    if (!line.starts_with(prefix)) {
        return std::nullopt;
    }
    std::vector<Share> shares;
    for (std::string_view rest = line.substr(prefix.size()); !rest.empty();) {
        const auto match = sharePattern().firstMatch(takePiece(rest, ","));
        const auto percent = match ? decimal(*(*match)[2]) : std::nullopt;
        if (percent) {
            shares.push_back({*(*match)[1], *percent});
        }
    }
    return shares;
}

std::optional<Finding> parseFinding(std::string_view line) {
    auto match = sentencePattern().firstMatch(line);
    if (!match) {
        match = titlePattern().firstMatch(line);
    }
    const auto percent = match ? decimal(*(*match)[1]) : std::nullopt;
    if (!percent) {
        return std::nullopt;
    }
    return Finding{.percent = *percent, .text = *(*match)[2]};
}

}  // namespace vorn::UsageCommandParser
