#include "core/support/json.hpp"

#include <cmath>

namespace vorn {

nlohmann::json encodeDate(Instant instant, DateCoding coding) {
    if (coding == DateCoding::iso8601) {
        return formatIso8601(instant);
    }
    return secondsSince1970(instant);
}

Instant decodeDate(const nlohmann::json& value, DateCoding coding) {
    if (coding == DateCoding::secondsSince1970) {
        return instantSince1970(decodeNumber(value));
    }
    const auto instant = parseIso8601(decodeText(value), Fraction::forbidden);
    if (!instant) {
        throw DecodingError("Expected date string to be ISO8601-formatted.");
    }
    return *instant;
}

const nlohmann::json& requireMember(const nlohmann::json& object, const char* key) {
    const nlohmann::json* member = findMember(object, key);
    if (member == nullptr) {
        throw DecodingError(std::string("No value associated with key \"") + key + "\".");
    }
    return *member;
}

const nlohmann::json* findMember(const nlohmann::json& object, const char* key) {
    if (!object.is_object()) {
        throw DecodingError("Expected an object.");
    }
    const auto found = object.find(key);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

double decodeNumber(const nlohmann::json& value) {
    if (!value.is_number() || !std::isfinite(value.get<double>())) {
        throw DecodingError("Expected a number.");
    }
    return value.get<double>();
}

std::string decodeText(const nlohmann::json& value) {
    if (!value.is_string()) {
        throw DecodingError("Expected a string.");
    }
    return value.get<std::string>();
}

std::int64_t decodeInteger(const nlohmann::json& value) {
    constexpr double kExactBelow = 9007199254740992.0;  // 2^53: every whole number below it is itself in a double
    if (value.is_number_unsigned() && value.get<std::uint64_t>() <= static_cast<std::uint64_t>(INT64_MAX)) {
        return value.get<std::int64_t>();
    }
    if (value.is_number_integer() && !value.is_number_unsigned()) {
        return value.get<std::int64_t>();
    }
    if (value.is_number_float()) {
        const double number = value.get<double>();
        if (std::abs(number) < kExactBelow && std::trunc(number) == number) {
            return static_cast<std::int64_t>(number);
        }
    }
    throw DecodingError("Expected a whole number.");
}

std::optional<nlohmann::json> parseJson(std::string_view text) {
    auto document = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (document.is_discarded()) {
        return std::nullopt;
    }
    return document;
}

std::string dumpJson(const nlohmann::json& value, bool pretty) {
    return value.dump(pretty ? 2 : -1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace vorn
