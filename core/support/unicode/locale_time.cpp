#include "core/support/unicode/locale_time.hpp"

#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>

#include <unicode/datefmt.h>
#include <unicode/smpdtfmt.h>

#include "core/support/file.hpp"
#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/icu_conversion.hpp"

namespace vorn {
namespace {

/// How many locales are kept: one is normal, another follows a change of settings.
constexpr std::size_t kCachedFormats = 8;

/// As in the environment ("sr_RS.UTF-8@latin"); empty when nothing is set.
std::string environmentLocale() {
    for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) {
        if (auto value = environmentValue(name)) {
            return *value;
        }
    }
    return {};
}

/// "sr_RS.UTF-8@latin" in ICU's words: "sr_Latn_RS". The encoding does not matter here, and of the modifiers only those
/// that name a script do ("@euro" is about money).
std::string icuLocale(std::string_view posix) {
    const std::string_view name = posix.substr(0, posix.find_first_of(".@"));
    const auto at = posix.find('@');
    const std::string_view modifier = at == std::string_view::npos ? std::string_view() : posix.substr(at + 1);
    constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kScripts = {
        {{"latin", "_Latn"}, {"cyrillic", "_Cyrl"}, {"devanagari", "_Deva"}}};
    for (const auto& [spelling, script] : kScripts) {
        if (modifier == spelling) {
            const auto language = name.find('_');
            const std::string country(language == std::string_view::npos ? std::string_view() : name.substr(language));
            return std::string(name.substr(0, language)) + std::string(script) + country;
        }
    }
    return std::string(name);
}

/// Formatters of one locale, all in UTC: they are handed what a clock shows as if it were that, since ICU has rules of
/// its own for zones. Any may be null when ICU has no data.
struct Formats {
    std::unique_ptr<icu::DateFormat> time;
    std::unique_ptr<icu::DateFormat> weekday;
    std::unique_ptr<icu::DateFormat> date;
    std::unique_ptr<icu::DateFormat> typedDate;
};

Formats makeFormats(const std::string& posixLocale) {
    const std::string name = icuLocale(posixLocale);
    const bool isPlain = name.empty() || name == "C" || name == "POSIX";
    const icu::Locale locale = isPlain ? icu::Locale::getUS() : icu::Locale(name.c_str());
    UErrorCode status = U_ZERO_ERROR;
    Formats formats;
    if (isPlain) {
        formats.time = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString("HH:mm"), locale, status);
    } else {
        formats.time.reset(icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, locale));
    }
    formats.weekday.reset(icu::DateFormat::createInstanceForSkeleton(icu::UnicodeString("E"), locale, status));
    formats.date.reset(icu::DateFormat::createInstanceForSkeleton(icu::UnicodeString("MMMEd"), locale, status));
    if (isPlain) {
        formats.typedDate = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString("yyyy-MM-dd"), locale, status);
    } else {
        formats.typedDate.reset(icu::DateFormat::createInstanceForSkeleton(icu::UnicodeString("yMd"), locale, status));
    }
    if (U_FAILURE(status) != 0) {
        return {};
    }
    for (const auto& format :
         {formats.time.get(), formats.weekday.get(), formats.date.get(), formats.typedDate.get()}) {
        if (format != nullptr) {
            format->setTimeZone(*icu::TimeZone::getGMT());
        }
    }
    return formats;
}

using Which = std::unique_ptr<icu::DateFormat> Formats::*;

/// Making a formatter takes a good part of a millisecond, so they are kept. They are not safe to share between threads:
/// the lock covers their use too.
template <typename Use>
void useFormat(Which which, const Use& use) {
    static std::mutex mutex;
    static std::map<std::string, Formats> cache;

    std::string locale = environmentLocale();
    const std::lock_guard lock(mutex);
    auto found = cache.find(locale);
    if (found == cache.end()) {
        if (cache.size() >= kCachedFormats) {
            cache.clear();
        }
        Formats made = makeFormats(locale);
        found = cache.emplace(std::move(locale), std::move(made)).first;
    }
    if (const auto& formatter = found->second.*which) {
        use(*formatter);
    }
}

std::string format(Instant instant, const TimeZone& zone, Which which) {
    std::string text;
    if (std::isfinite(secondsSince1970(instant))) {
        useFormat(which, [&](const icu::DateFormat& formatter) {
            icu::UnicodeString formatted;
            formatter.format(toIcuDate(zone.shown(instant)), formatted).toUTF8String(text);
        });
    }
    return text;
}

/// The text with plain spaces only, as keyboards have them, and none at its ends.
icu::UnicodeString withPlainSpaces(icu::UnicodeString text) {
    for (const char16_t space : {u'\u00a0', u'\u202f'}) {
        text.findAndReplace(icu::UnicodeString(space), icu::UnicodeString(u' '));
    }
    return text.trim();
}

/// The whole of `text`, which has plain spaces, in that format: what a clock shows, as if it were UTC.
std::optional<Instant> parseAll(icu::DateFormat& format, const icu::UnicodeString& text) {
    format.setLenient(0);
    icu::ParsePosition position(0);
    const UDate date = format.parse(text, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != text.length()) {
        return std::nullopt;
    }
    return fromIcuDate(date);
}

std::optional<Instant> parseAs(const char* pattern, const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format(icu::UnicodeString(pattern), icu::Locale::getUS(), status);
    if (U_FAILURE(status) != 0) {
        return std::nullopt;
    }
    format.setTimeZone(*icu::TimeZone::getGMT());
    return parseAll(format, text);
}

/// The locale's pattern, in which some locales have other spaces than keyboards do.
std::optional<Instant> parseAsLocale(Which which, const icu::UnicodeString& text) {
    std::optional<Instant> parsed;
    useFormat(which, [&](const icu::DateFormat& shared) {
        const std::unique_ptr<icu::DateFormat> own(shared.clone());
        if (auto* const simple = dynamic_cast<icu::SimpleDateFormat*>(own.get())) {
            icu::UnicodeString pattern;
            simple->applyPattern(withPlainSpaces(simple->toPattern(pattern)));
        }
        parsed = parseAll(*own, text);
    });
    return parsed;
}

/// Days since 1970 on the zone's own calendar.
double localDay(Instant instant, const TimeZone& zone) {
    return std::floor(zone.shown(instant).time_since_epoch() / std::chrono::days{1});
}

}  // namespace

std::string shortTime(Instant instant, const TimeZone& zone) {
    return format(instant, zone, &Formats::time);
}

std::string shortWeekday(Instant instant, const TimeZone& zone) {
    return format(instant, zone, &Formats::weekday);
}

std::string shortDate(Instant instant, const TimeZone& zone) {
    return format(instant, zone, &Formats::date);
}

std::string typedDate(Instant instant, const TimeZone& zone) {
    return format(instant, zone, &Formats::typedDate);
}

std::optional<Instant> parseTypedDate(std::string_view text, const TimeZone& zone) {
    constexpr int kCentury = 2000;
    const icu::UnicodeString typed = withPlainSpaces(toIcuText(text));
    auto date = parseAs("yyyy-MM-dd", typed);
    date = date ? date : parseAsLocale(&Formats::typedDate, typed);
    auto wall = date ? Calendar(TimeZone()).wallTime(*date) : std::nullopt;
    if (!wall) {
        return std::nullopt;
    }
    wall->year += wall->year >= 0 && wall->year < 100 ? kCentury : 0;  // "26" means 2026
    return Calendar(zone).instant(*wall);
}

std::optional<Seconds> parseTypedTime(std::string_view text) {
    const icu::UnicodeString typed = withPlainSpaces(toIcuText(text));
    auto time = parseAsLocale(&Formats::time, typed);
    for (const char* pattern : {"H:mm", "h:mm a", "h a"}) {
        time = time ? time : parseAs(pattern, typed);
    }
    return time ? std::optional(time->time_since_epoch()) : std::nullopt;
}

bool isSameDay(Instant one, Instant other, const TimeZone& zone) {
    return localDay(one, zone) == localDay(other, zone);
}

}  // namespace vorn
