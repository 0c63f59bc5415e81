#include "core/data/other_limits.hpp"

#include "core/support/json.hpp"

namespace vorn {
namespace {

using nlohmann::json;

void put(json& object, const char* key, std::optional<double> number) {
    if (number) {
        object[key] = *number;
    }
}

std::optional<double> numberIn(const json& object, const char* key) {
    const json* const value = findMember(object, key);
    return value != nullptr ? std::optional(decodeNumber(*value)) : std::nullopt;
}

Instant timeIn(const json& object, const char* key) {
    return decodeDate(requireMember(object, key), DateCoding::secondsSince1970);
}

json encode(const OtherLimit& limit) {
    json object = {{"name", limit.name},
                   {"usedPercent", limit.usedPercent},
                   {"observedAt", encodeDate(limit.observedAt, DateCoding::secondsSince1970)}};
    put(object, "used", limit.used);
    put(object, "cap", limit.cap);
    if (limit.resetsAt) {
        object["resetsAt"] = encodeDate(*limit.resetsAt, DateCoding::secondsSince1970);
    }
    return object;
}

OtherLimit decodeOtherLimit(const json& object) {
    OtherLimit limit{.name = decodeText(requireMember(object, "name")),
                     .usedPercent = decodeNumber(requireMember(object, "usedPercent")),
                     .used = numberIn(object, "used"),
                     .cap = numberIn(object, "cap"),
                     .observedAt = timeIn(object, "observedAt")};
    if (findMember(object, "resetsAt") != nullptr) {
        limit.resetsAt = timeIn(object, "resetsAt");
    }
    return limit;
}

json encode(const Credits& credits) {
    json object = {{"isEnabled", credits.isEnabled},
                   {"spent", credits.spent},
                   {"currency", credits.currency},
                   {"observedAt", encodeDate(credits.observedAt, DateCoding::secondsSince1970)}};
    put(object, "cap", credits.cap);
    put(object, "usedPercent", credits.usedPercent);
    return object;
}

Credits decodeCredits(const json& object) {
    const json* const isEnabled = findMember(object, "isEnabled");
    return {.isEnabled = isEnabled != nullptr && *isEnabled == true,
            .spent = decodeNumber(requireMember(object, "spent")),
            .cap = numberIn(object, "cap"),
            .usedPercent = numberIn(object, "usedPercent"),
            .currency = decodeText(requireMember(object, "currency")),
            .observedAt = timeIn(object, "observedAt")};
}

}  // namespace

json encode(const OtherLimits& others) {
    json object = json::object();
    for (const OtherLimit& limit : others.limits) {
        object["limits"].push_back(encode(limit));
    }
    if (others.credits) {
        object["credits"] = encode(*others.credits);
    }
    return object;
}

OtherLimits decodeOtherLimits(const json& value) {
    OtherLimits others;
    if (const json* const limits = findMember(value, "limits"); limits != nullptr && limits->is_array()) {
        for (const json& limit : *limits) {
            others.limits.push_back(decodeOtherLimit(limit));
        }
    }
    if (const json* const credits = findMember(value, "credits")) {
        others.credits = decodeCredits(*credits);
    }
    return others;
}

}  // namespace vorn
