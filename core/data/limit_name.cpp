#include "core/data/limit_name.hpp"

#include <algorithm>

#include "core/support/text.hpp"

namespace vorn {
namespace {

constexpr std::string_view kModelMember = "seven_day_";
constexpr std::string_view kOnly = " only";

std::string_view withoutBlanks(std::string_view text) {
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string_view::npos ? text : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

}  // namespace

WindowKind modelWeek(std::string_view sourceName) {
    std::string_view name = withoutBlanks(sourceName);
    if (name.size() > kOnly.size() && asciiLower(name.substr(name.size() - kOnly.size())) == kOnly) {
        name = withoutBlanks(name.substr(0, name.size() - kOnly.size()));
    }
    return WindowKind::weekModel(std::string(name));
}

std::optional<WindowKind> windowOfMember(std::string_view member) {
    if (member == "five_hour") {
        return WindowKind::session();
    }
    if (member == "seven_day") {
        return WindowKind::week();
    }
    if (member.size() > kModelMember.size() && member.starts_with(kModelMember)) {
        return modelWeek(limitName(member.substr(kModelMember.size())));
    }
    return std::nullopt;
}

std::string limitName(std::string_view member) {
    std::string name(member);
    std::ranges::replace(name, '_', ' ');
    if (!name.empty()) {
        name.replace(0, 1, asciiUpper(name.substr(0, 1)));
    }
    return name;
}

bool isSameLimit(const WindowKind& one, const WindowKind& other) {
    return one.which() == other.which() && asciiLower(one.modelName()) == asciiLower(other.modelName());
}

}  // namespace vorn
