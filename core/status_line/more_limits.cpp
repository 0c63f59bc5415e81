#include "core/status_line/more_limits.hpp"

#include <algorithm>

#include "core/support/file.hpp"
#include "core/support/json.hpp"
#include "core/support/member_text.hpp"

namespace vorn {
namespace {

using nlohmann::json;

constexpr std::chrono::milliseconds kPatience{5};
constexpr std::size_t kLargest = std::size_t{1} << 20U;
constexpr DateCoding kDates = DateCoding::secondsSince1970;

/// Whether the snapshot has a reading of it.
bool isOfSnapshot(const json& rateLimits, const char* name) {
    const json* limit = findMember(rateLimits, name);
    return limit != nullptr && limit->is_object() && limit->contains("used_percentage");
}

MoreLimits decode(const json& document) {
    MoreLimits more{.observedAt = decodeDate(requireMember(document, "observedAt"), kDates)};
    if (!isPlausible(more.observedAt)) {
        throw DecodingError("No calendar shows that.");
    }
    for (const json& window : requireMember(document, "windows")) {
        more.limits.windows.push_back(decodeUsageWindow(window, kDates));
    }
    more.limits.others = decodeOtherLimits(requireMember(document, "others"));
    return more;
}

}  // namespace

std::optional<MoreLimits> MoreLimits::from(std::string_view statusLineInput, Instant now) {
    const std::string_view text = memberText(statusLineInput, "rate_limits");
    const auto document = !text.empty() && text.size() <= kLargest ? parseJson(text) : std::nullopt;
    if (!document) {
        return std::nullopt;
    }
    MoreLimits more{.observedAt = now, .limits = decodeRateLimits(*document, now, DataSource::statusLine)};
    std::erase_if(more.limits.windows, [&](const UsageWindow& window) {
        return (window.kind == WindowKind::session() && isOfSnapshot(*document, "five_hour")) ||
               (window.kind == WindowKind::week() && isOfSnapshot(*document, "seven_day"));
    });
    return more.limits == RateLimits() ? std::nullopt : std::optional(std::move(more));
}

bool MoreLimits::write(const std::filesystem::path& file) const {
    createPrivateDirectories(file.parent_path());
    std::filesystem::path lockFile = file;
    const auto lock = FileLock::acquire(lockFile += ".lock", kPatience);
    if (!lock) {
        return false;
    }
    json document = {
        {"observedAt", encodeDate(observedAt, kDates)}, {"windows", json::array()}, {"others", encode(limits.others)}};
    for (const UsageWindow& window : limits.windows) {
        document["windows"].push_back(encode(window, kDates));
    }
    removeAbandonedTemporaries(file);
    replaceFileUnflushed(file, dumpJson(document));
    return true;
}

std::optional<MoreLimits> readMoreLimits(const std::filesystem::path& file) try {
    const auto content = readFile(file, kLargest);
    const auto document = content ? parseJson(*content) : std::nullopt;
    return document ? std::optional(decode(*document)) : std::nullopt;
} catch (const DecodingError&) {
    return std::nullopt;
}

}  // namespace vorn
