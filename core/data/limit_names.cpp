#include "core/data/limit_names.hpp"

#include <algorithm>
#include <cstddef>

#include "core/support/text.hpp"

namespace vorn {
namespace {

constexpr std::string_view kOnly = " only";

std::string_view withoutOnly(std::string_view name) {
    const bool endsSo = name.size() > kOnly.size() && asciiLower(name.substr(name.size() - kOnly.size())) == kOnly;
    return endsSo ? name.substr(0, name.size() - kOnly.size()) : name;
}

}  // namespace

WindowKind modelWeek(std::string_view sourceName) {
    return WindowKind::weekModel(std::string(withoutOnly(sourceName)));
}

WindowKind canonical(WindowKind kind) {
    if (kind.which() == WindowKind::Case::weekModel) {
        return modelWeek(kind.modelName());
    }
    return kind;
}

std::optional<WindowKind> windowKindOfMember(std::string_view member) {
    constexpr std::string_view kWeek = "seven_day";
    if (member == "five_hour") {
        return WindowKind::session();
    }
    if (member == kWeek) {
        return WindowKind::week();
    }
    const bool isModel = member.starts_with("seven_day_") && member.size() > kWeek.size() + 1;
    return isModel ? std::optional(modelWeek(titleOfMember(member.substr(kWeek.size() + 1)))) : std::nullopt;
}

std::string titleOfMember(std::string_view member) {
    std::string title(member);
    std::ranges::replace(title, '_', ' ');
    return asciiUpper(title.substr(0, 1)) + title.substr(std::min<std::size_t>(1, title.size()));
}

std::string limitKey(std::string_view kindKey) {
    return asciiLower(withoutOnly(kindKey));
}

bool isSameLimit(const WindowKind& one, const WindowKind& other) {
    return limitKey(one.key()) == limitKey(other.key());
}

}  // namespace vorn
