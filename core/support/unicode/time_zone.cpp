#include "core/support/unicode/time_zone.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

#include <fmt/format.h>
#include <sys/stat.h>
#include <unicode/strenum.h>
#include <unicode/timezone.h>

namespace vorn {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLocalTime = "/etc/localtime";

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

/// The name within a path such as "/usr/share/zoneinfo/posix/Europe/Berlin".
std::optional<std::string> nameInPath(std::string_view path) {
    constexpr std::string_view kDirectory = "/zoneinfo/";
    const auto at = path.rfind(kDirectory);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    path.remove_prefix(at + kDirectory.size());
    for (const std::string_view variant : {"posix/", "right/"}) {
        if (path.starts_with(variant)) {
            path.remove_prefix(variant.size());
        }
    }
    return isTimeZoneName(path) ? std::optional(std::string(path)) : std::nullopt;
}

/// What the C library makes of `TZ` or /etc/localtime, as a fixed offset: right now, though not after the next change.
std::string currentOffset() {
    ::tzset();
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (::localtime_r(&now, &local) == nullptr || local.tm_gmtoff == 0) {
        return "UTC";
    }
    const long minutes = std::abs(local.tm_gmtoff) / 60;
    return fmt::format("GMT{}{:02}:{:02}", local.tm_gmtoff < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

std::string zoneOfVariable(std::string_view value) {
    if (value.starts_with(':')) {
        value.remove_prefix(1);
    }
    if (value.empty()) {
        return "UTC";  // as the C library reads it
    }
    if (isTimeZoneName(value)) {
        return std::string(value);
    }
    return nameInPath(value).value_or(currentOffset());
}

/// A plain copy of a zone file has no name. ICU looks for its double among all zone files, which takes a while, so the
/// answer is kept for as long as the file stays the same.
std::string zoneOfCopy() {
    static std::mutex mutex;
    static struct stat known {};
    static std::string answer;

    struct stat current {};
    if (::stat(kLocalTime, &current) != 0) {
        return "UTC";
    }
    const std::lock_guard lock(mutex);
    const bool same = !answer.empty() && current.st_ino == known.st_ino && current.st_dev == known.st_dev &&
                      current.st_size == known.st_size && current.st_mtime == known.st_mtime;
    if (!same) {
        const std::unique_ptr<icu::TimeZone> detected(icu::TimeZone::detectHostTimeZone());
        icu::UnicodeString id;
        std::string name;
        detected->getID(id).toUTF8String(name);
        answer = isTimeZoneName(name) ? name : currentOffset();
        known = current;
    }
    return answer;
}

std::string zoneOfFile() {
    std::error_code error;
    // The link itself says the name the user chose; resolved to the end, it may become an older spelling.
    if (const fs::path target = fs::read_symlink(kLocalTime, error); !error) {
        if (auto name = nameInPath(target.string())) {
            return *name;
        }
        if (auto name = nameInPath(fs::canonical(kLocalTime, error).string())) {
            return *name;
        }
    }
    return zoneOfCopy();
}

}  // namespace

bool isTimeZoneName(std::string_view name) {
    static const auto names = readZoneNames();
    return names.contains(name);
}

std::string currentTimeZone() {
    const char* variable = std::getenv("TZ");
    return variable != nullptr ? zoneOfVariable(variable) : zoneOfFile();
}

}  // namespace vorn
