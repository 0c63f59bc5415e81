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
#include "core/support/unicode/icu_conversion.hpp"

namespace vorn {
namespace {

constexpr double kMillisecondsPerDay = 86'400'000.0;

/// How many pairs of locale and zone are kept: one is normal, a few follow a change of settings.
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

/// Formatters of one locale and zone; either may be null when ICU has no data.
struct Formats {
    std::unique_ptr<icu::DateFormat> time;
    std::unique_ptr<icu::DateFormat> weekday;
};

Formats makeFormats(const std::string& posixLocale, const std::string& zoneId) {
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
    if (U_FAILURE(status) != 0) {
        return {};
    }
    for (const auto& format : {formats.time.get(), formats.weekday.get()}) {
        if (format != nullptr) {
            format->adoptTimeZone(makeIcuZone(zoneId).release());
        }
    }
    return formats;
}

/// Making a formatter takes a good part of a millisecond, so they are kept. They are not safe to share between threads:
/// the lock covers their use too.
std::string format(Instant instant, const std::string& zoneId, std::unique_ptr<icu::DateFormat> Formats::*which) {
    static std::mutex mutex;
    static std::map<std::pair<std::string, std::string>, Formats> cache;

    if (!std::isfinite(secondsSince1970(instant))) {
        return {};
    }
    std::pair key(environmentLocale(), zoneId);
    const std::lock_guard lock(mutex);
    auto found = cache.find(key);
    if (found == cache.end()) {
        if (cache.size() >= kCachedFormats) {
            cache.clear();
        }
        Formats made = makeFormats(key.first, key.second);
        found = cache.emplace(std::move(key), std::move(made)).first;
    }
    std::string text;
    if (const auto& formatter = found->second.*which) {
        icu::UnicodeString formatted;
        formatter->format(toIcuDate(instant), formatted).toUTF8String(text);
    }
    return text;
}

/// Days since 1970 on the zone's own calendar.
double localDay(Instant instant, const icu::TimeZone& zone) {
    std::int32_t standard = 0;
    std::int32_t summer = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone.getOffset(toIcuDate(instant), 0, standard, summer, status);
    return std::floor((toIcuDate(instant) + standard + summer) / kMillisecondsPerDay);
}

}  // namespace

std::string shortTime(Instant instant, const std::string& zoneId) {
    return format(instant, zoneId, &Formats::time);
}

std::string shortWeekday(Instant instant, const std::string& zoneId) {
    return format(instant, zoneId, &Formats::weekday);
}

bool isSameDay(Instant one, Instant other, const std::string& zoneId) {
    const auto zone = makeIcuZone(zoneId);
    return localDay(one, *zone) == localDay(other, *zone);
}

}  // namespace vorn
