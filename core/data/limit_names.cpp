#include "core/data/limit_names.hpp"

#include <algorithm>

#include "core/support/text.hpp"

namespace vorn {

WindowKind modelWeek(std::string_view sourceName) {
    constexpr std::string_view kOnly = " only";
    if (sourceName.size() > kOnly.size() && asciiLower(sourceName).ends_with(kOnly)) {
        sourceName.remove_suffix(kOnly.size());
    }
    return WindowKind::weekModel(std::string(sourceName));
}

std::optional<WindowKind> windowKindOfMember(std::string_view member) {
    constexpr std::string_view kModelPrefix = "seven_day_";
    if (member == "five_hour") {
        return WindowKind::session();
    }
    if (member == "seven_day") {
        return WindowKind::week();
    }
    if (member.starts_with(kModelPrefix) && member.size() > kModelPrefix.size()) {
        return modelWeek(titleOfMember(member.substr(kModelPrefix.size())));
    }
    return std::nullopt;
}

std::string titleOfMember(std::string_view member) {
    std::string title(member);
    std::ranges::replace(title, '_', ' ');
    title.replace(0, 1, asciiUpper(title.substr(0, 1)));
    return title;
}

}  // namespace vorn
