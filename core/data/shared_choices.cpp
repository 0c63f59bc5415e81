#include "core/data/shared_choices.hpp"

#include "core/support/file.hpp"
#include "core/support/json.hpp"

namespace vorn {
namespace {

constexpr std::size_t kLargestFile = 1U << 20U;  // bytes; usually a hundred
constexpr Seconds kLeastRefresh = std::chrono::minutes{1};
constexpr Seconds kMostRefresh = std::chrono::hours{24};

}  // namespace

SharedChoices loadSharedChoices(const std::filesystem::path& file) {
    SharedChoices choices;
    const auto content = readFile(file, kLargestFile);
    const auto document = content ? parseJson(*content) : std::nullopt;
    if (!document || !document->is_object()) {
        return choices;
    }
    if (const auto* path = findMember(*document, "claudePath"); path != nullptr && path->is_string()) {
        choices.claudePath = path->get<std::string>();
    }
    if (const auto* isOn = findMember(*document, "useLocalActivity"); isOn != nullptr && isOn->is_boolean()) {
        choices.useLocalActivity = isOn->get<bool>();
    }
    if (const auto* minutes = findMember(*document, "refreshMinutes"); minutes != nullptr && minutes->is_number()) {
        const Seconds refresh = std::chrono::duration<double, std::ratio<60>>(minutes->get<double>());
        choices.refresh = refresh >= kLeastRefresh && refresh <= kMostRefresh ? refresh : choices.refresh;
    }
    return choices;
}

void saveSharedChoices(const std::filesystem::path& file, const SharedChoices& choices) {
    createPrivateDirectories(file.parent_path());
    const nlohmann::json value = {{"claudePath", choices.claudePath},
                                  {"useLocalActivity", choices.useLocalActivity},
                                  {"refreshMinutes", choices.refresh / std::chrono::minutes{1}}};
    replaceFile(file, dumpJson(value, true) + "\n");
}

}  // namespace vorn
