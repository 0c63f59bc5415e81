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

void addNumber(json& object, const char* key, const std::optional<double>& number) {
    if (number) {
        object[key] = *number;
    }
}

std::optional<double> numberIn(const json& object, const char* key) {
    const json* number = findMember(object, key);
    return number == nullptr ? std::nullopt : std::optional(decodeNumber(*number));
}

json encode(const OtherLimit& limit) {
    json object = {{"name", limit.name}, {"usedPercent", limit.usedPercent}};
    addNumber(object, "used", limit.used);
    addNumber(object, "cap", limit.cap);
    if (limit.resetsAt) {
        object["resetsAt"] = encodeDate(*limit.resetsAt, kDates);
    }
    return object;
}

OtherLimit decodeOtherLimit(const json& object, Instant observedAt) {
    const json* reset = findMember(object, "resetsAt");
    return {.name = decodeText(requireMember(object, "name")),
            .usedPercent = decodeNumber(requireMember(object, "usedPercent")),
            .used = numberIn(object, "used"),
            .cap = numberIn(object, "cap"),
            .resetsAt = reset == nullptr ? std::nullopt : std::optional(decodeDate(*reset, kDates)),
            .observedAt = observedAt};
}

json encode(const Credits& credits) {
    json object = {{"isEnabled", credits.isEnabled}, {"spent", credits.spent}, {"currency", credits.currency}};
    addNumber(object, "cap", credits.cap);
    addNumber(object, "usedPercent", credits.usedPercent);
    return object;
}

Credits decodeCredits(const json& object, Instant observedAt) {
    return {.isEnabled = requireMember(object, "isEnabled") == true,
            .spent = decodeNumber(requireMember(object, "spent")),
            .cap = numberIn(object, "cap"),
            .usedPercent = numberIn(object, "usedPercent"),
            .currency = decodeText(requireMember(object, "currency")),
            .observedAt = observedAt};
}

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
    for (const json& limit : requireMember(document, "others")) {
        more.limits.others.limits.push_back(decodeOtherLimit(limit, more.observedAt));
    }
    if (const json* credits = findMember(document, "credits")) {
        more.limits.others.credits = decodeCredits(*credits, more.observedAt);
    }
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
        {"observedAt", encodeDate(observedAt, kDates)}, {"windows", json::array()}, {"others", json::array()}};
    for (const UsageWindow& window : limits.windows) {
        document["windows"].push_back(vorn::encode(window, kDates));
    }
    for (const OtherLimit& limit : limits.others.limits) {
        document["others"].push_back(encode(limit));
    }
    if (limits.others.credits) {
        document["credits"] = encode(*limits.others.credits);
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
