#include "core/support/member_text.hpp"

#include <algorithm>
#include <cstddef>

namespace vorn {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// Where the text that begins at `begin` has its last quotation mark.
std::size_t endOfText(std::string_view json, std::size_t begin) {
    std::size_t at = begin + 1;
    while (at < json.size() && json[at] != '"') {
        at += json[at] == '\\' ? 2U : 1U;
    }
    return std::min(at, json.size());
}

}  // namespace

std::string_view memberText(std::string_view object, std::string_view name) {
    std::string_view found;
    bool isObject = false;
    bool isKeyNext = false;
    bool isWanted = false;
    std::size_t depth = 0;
    std::size_t value = 0;
    for (std::size_t at = 0; at < object.size(); ++at) {
        const char c = object[at];
        if (c == '"') {
            const std::size_t end = endOfText(object, at);
            if (depth == 1 && isKeyNext) {
                isWanted = object.substr(at + 1, end - at - 1) == name;
            }
            at = end;
        } else if (c == '{' || c == '[') {
            ++depth;
            isObject = depth == 1 ? c == '{' : isObject;
            isKeyNext = depth == 1 && isObject;
        } else if (c == ':' && depth == 1) {
            isKeyNext = false;
            value = at + 1;
        } else if (c == '}' || c == ']' || (c == ',' && depth == 1)) {
            if (depth == 1 && isWanted) {
                found = trimmed(object.substr(value, at - value));
            }
            isWanted = isWanted && depth > 1;
            isKeyNext = isObject && c == ',';
            depth -= c == ',' || depth == 0 ? 0 : 1;
        }
    }
    return found;
}

}  // namespace vorn
