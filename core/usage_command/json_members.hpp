#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <simdjson.h>

/// Reading JSON of the client's member by member, in as much memory as the text takes. What has another type than is
/// looked for counts as absent; only text that is no JSON is a fault.
namespace vorn::json_members {

namespace ondemand = simdjson::ondemand;

/// Hands every member to `take(key, value)`, which returns false to give up, and looks at what it takes no further.
/// False when the text is no JSON or `take` gave up.
template <typename Take>
bool forEachMember(ondemand::object object, Take take) {
    for (auto member : object) {
        ondemand::field field;
        std::string_view key;
        if (std::move(member).get(field) != simdjson::SUCCESS || field.unescaped_key().get(key) != simdjson::SUCCESS ||
            !take(key, field.value())) {
            return false;
        }
    }
    return true;
}

/// The same for what need not be an object: one that is none has no members.
template <typename Take>
bool forEachMember(ondemand::value& value, Take take) {
    ondemand::object object;
    return value.get_object().get(object) != simdjson::SUCCESS || forEachMember(object, take);
}

/// The same for the elements of what need not be an array: `take(value)`.
template <typename Take>
bool forEachElement(ondemand::value& value, Take take) {
    ondemand::array array;
    if (value.get_array().get(array) != simdjson::SUCCESS) {
        return true;
    }
    for (auto each : array) {
        ondemand::value element;
        const auto error = std::move(each).get(element);  // NOLINT(performance-move-const-arg): it wants an rvalue
        if (error != simdjson::SUCCESS || !take(element)) {
            return false;
        }
    }
    return true;
}

inline ondemand::json_type typeOf(ondemand::value& value) {
    ondemand::json_type type = ondemand::json_type::null;
    return value.type().get(type) == simdjson::SUCCESS ? type : ondemand::json_type::null;
}

inline std::optional<std::string> textIn(ondemand::value& value) {
    std::string_view text;
    return value.get_string().get(text) == simdjson::SUCCESS ? std::optional<std::string>(text) : std::nullopt;
}

/// Finite and not negative, as is everything that the client counts or measures.
inline std::optional<double> numberIn(ondemand::value& value) {
    double number = 0;
    const bool isNumber = value.get_double().get(number) == simdjson::SUCCESS && std::isfinite(number) && number >= 0;
    return isNumber ? std::optional(number) : std::nullopt;
}

inline std::optional<std::int64_t> countIn(ondemand::value& value) {
    std::int64_t count = 0;
    return value.get_int64().get(count) == simdjson::SUCCESS && count >= 0 ? std::optional(count) : std::nullopt;
}

inline bool isTrue(ondemand::value& value) {
    bool truth = false;
    return value.get_bool().get(truth) == simdjson::SUCCESS && truth;
}

}  // namespace vorn::json_members
