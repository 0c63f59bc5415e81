#include "core/support/unicode/time_zone.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <unicode/basictz.h>
#include <unicode/strenum.h>
#include <unicode/tztrans.h>

#include "core/support/file.hpp"
#include "core/support/unicode/icu_conversion.hpp"
#include "core/support/zone_file.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;

/// ICU lists the IANA names and, beside them, identifiers of its own, which no list that it offers leaves out: the
/// abbreviations that Java once had, and names that IANA has withdrawn. Taken from a comparison with the database.
constexpr std::array<std::string_view, 27> kNotIana = {"ACT", "AET",
                                                       "AGT", "ART",
                                                       "AST", "BET",
                                                       "BST", "CAT",
                                                       "CNT", "CST",
                                                       "CTT", "Canada/East-Saskatchewan",
                                                       "EAT", "ECT",
                                                       "IET", "IST",
                                                       "JST", "MIT",
                                                       "NET", "NST",
                                                       "PLT", "PNT",
                                                       "PRT", "PST",
                                                       "SST", "US/Pacific-New",
                                                       "VST"};

bool isIcuOnly(std::string_view name) {
    return name.starts_with("SystemV/") || name == "Etc/Unknown" || std::ranges::binary_search(kNotIana, name);
}

std::set<std::string, std::less<>> readZoneNames() {
    std::set<std::string, std::less<>> names;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::StringEnumeration> all(
        icu::TimeZone::createTimeZoneIDEnumeration(UCAL_ZONE_TYPE_ANY, nullptr, nullptr, status));
    if (U_FAILURE(status) != 0 || all == nullptr) {
        return names;
    }
    std::int32_t length = 0;
    for (const char* name = all->next(&length, status); name != nullptr; name = all->next(&length, status)) {
        if (!isIcuOnly(name)) {
            names.emplace(name);
        }
    }
    return names;
}

bool isKnownToIcu(std::string_view name) {
    static const auto names = readZoneNames();
    return names.contains(name);
}

/// With all changes that ICU knows of up to a distant year.
std::optional<TimeZone> zoneOfIcu(std::string_view name) {
    constexpr UDate kDistant = 4102444800000.0;  // the year 2100
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(toIcuText(name)));
    const auto* const rules = dynamic_cast<const icu::BasicTimeZone*>(zone.get());
    if (rules == nullptr) {
        return std::nullopt;
    }
    const auto offset = [](std::int32_t standard, std::int32_t summer) {
        return Seconds{std::chrono::milliseconds{standard + summer}};
    };
    std::vector<ZoneOffsets::Change> changes;
    icu::TimeZoneTransition change;
    for (UDate at = -1e15; at < kDistant && rules->getNextTransition(at, 0, change) != 0; at = change.getTime()) {
        const auto add = [&](Instant from, const icu::TimeZoneRule& rule) {
            changes.push_back({from, offset(rule.getRawOffset(), rule.getDSTSavings())});
        };
        if (changes.empty()) {
            add(fromIcuDate(at), *change.getFrom());
        }
        add(fromIcuDate(change.getTime()), *change.getTo());
    }
    if (changes.empty()) {
        changes.push_back({Instant{}, offset(zone->getRawOffset(), 0)});
    }
    return TimeZone(std::move(changes));
}

/// Read once for as long as the file stays the same: people ask for the time often.
std::optional<TimeZone> zoneInFile(const fs::path& file) {
    constexpr std::size_t kLargestFile = std::size_t{1} << 20U;
    constexpr std::size_t kMostKept = 64;
    struct Known {
        FileStamp stamp;
        std::optional<TimeZone> zone;
    };
    static std::mutex mutex;
    static std::map<fs::path, Known> files;

    const auto stamp = fileStamp(file);
    if (!stamp) {
        return std::nullopt;
    }
    const std::lock_guard lock(mutex);
    if (const auto known = files.find(file); known != files.end() && known->second.stamp == *stamp) {
        return known->second.zone;
    }
    const auto content = readFile(file, kLargestFile);
    auto zone = content ? readZoneFile(*content) : std::nullopt;
    if (files.size() >= kMostKept) {
        files.clear();
    }
    files.insert_or_assign(file, Known{*stamp, zone});
    return zone;
}

/// Whether it may be put behind the folder's path: names come out of what others print.
bool isPlainName(std::string_view name) {
    constexpr std::size_t kLongest = 255;
    return !name.empty() && name.size() <= kLongest && name.front() != '/' && std::ranges::all_of(name, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' || c == '_' ||
               c == '-' || c == '+';
    });
}

std::optional<TimeZone> zoneInFolder(std::string_view name) {
    const fs::path folder = environmentValue("TZDIR").value_or("/usr/share/zoneinfo");
    return isPlainName(name) ? zoneInFile(folder / name) : std::nullopt;
}

/// The name within a path such as "/usr/share/zoneinfo/posix/Europe/Berlin".
std::string_view nameInPath(std::string_view path) {
    constexpr std::string_view kFolder = "/zoneinfo/";
    const auto at = path.rfind(kFolder);
    path.remove_prefix(at == std::string_view::npos ? path.size() : at + kFolder.size());
    for (const std::string_view variant : {"posix/", "right/"}) {
        if (path.starts_with(variant)) {
            path.remove_prefix(variant.size());
        }
    }
    return path;
}

TimeZone zoneOfVariable(std::string_view value) {
    if (value.starts_with(':')) {
        value.remove_prefix(1);
    }
    if (value.starts_with('/')) {
        return timeZoneOfFile(value);
    }
    // As the C library reads it: a name before a rule, and UTC for what is neither.
    const auto named = timeZoneNamed(value);
    return named ? *named : readZoneRule(value).value_or(TimeZone());
}

}  // namespace

std::optional<TimeZone> timeZoneNamed(std::string_view name) {
    if (auto zone = zoneInFolder(name)) {
        return zone;
    }
    if (!isKnownToIcu(name)) {
        return std::nullopt;
    }
    // Some systems leave out older names, which the client prints nevertheless: the file may have a newer one.
    const icu::UnicodeString id = toIcuText(name);
    for (std::int32_t i = 0, count = icu::TimeZone::countEquivalentIDs(id); i < count; ++i) {
        std::string other;
        if (auto zone = zoneInFolder(icu::TimeZone::getEquivalentID(id, i).toUTF8String(other))) {
            return zone;
        }
    }
    return zoneOfIcu(name);
}

TimeZone timeZoneOfFile(const fs::path& file) {
    if (auto zone = zoneInFile(file)) {
        return *zone;
    }
    std::error_code error;
    // The link itself says the name the user chose; resolved to the end, it may become an older spelling.
    for (const fs::path& path : {file, fs::read_symlink(file, error), fs::weakly_canonical(file, error)}) {
        if (auto zone = timeZoneNamed(nameInPath(path.native()))) {
            return *zone;
        }
    }
    return {};
}

TimeZone currentTimeZone() {
    const char* variable = std::getenv("TZ");
    return variable != nullptr ? zoneOfVariable(variable) : timeZoneOfFile("/etc/localtime");
}

}  // namespace vorn
