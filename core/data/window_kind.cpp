#include "core/data/window_kind.hpp"

#include <ostream>
#include <utility>

#include "core/support/json.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kModelPrefix = "week:";
constexpr Seconds kSessionLength = 5h;
constexpr Seconds kWeekLength = 168h;

/// The single nested object of an enum case that carries nothing.
void requireEmptyCase(const nlohmann::json& payload) {
    if (!payload.is_object()) {
        throw DecodingError("Expected an object for the enum case.");
    }
}

}  // namespace

std::optional<WindowKind> WindowKind::fromKey(std::string_view key) {
    if (key == "session") {
        return session();
    }
    if (key == "week") {
        return week();
    }
    if (key.starts_with(kModelPrefix) && key.size() > kModelPrefix.size()) {
        return weekModel(std::string(key.substr(kModelPrefix.size())));
    }
    return std::nullopt;
}

std::string WindowKind::key() const {
    switch (m_case) {
        case Case::session:
            return "session";
        case Case::week:
            return "week";
        case Case::weekModel:
            break;
    }
    return std::string(kModelPrefix) + m_model;
}

std::string WindowKind::title() const {
    switch (m_case) {
        case Case::session:
            return "Session";
        case Case::week:
            return "Week";
        case Case::weekModel:
            break;
    }
    return "Week · " + m_model;
}

std::string WindowKind::shortTitle() const {
    switch (m_case) {
        case Case::session:
            return "5h";
        case Case::week:
            return "7d";
        case Case::weekModel:
            break;
    }
    return m_model;
}

Seconds WindowKind::length() const {
    return isSession() ? kSessionLength : kWeekLength;
}

nlohmann::json encode(const WindowKind& kind) {
    const auto empty = nlohmann::json::object();
    switch (kind.which()) {
        case WindowKind::Case::session:
            return {{"session", empty}};
        case WindowKind::Case::week:
            return {{"week", empty}};
        case WindowKind::Case::weekModel:
            break;
    }
    return {{"weekModel", {{"_0", kind.modelName()}}}};
}

WindowKind decodeWindowKind(const nlohmann::json& value) {
    if (!value.is_object() || value.size() != 1) {
        throw DecodingError("Invalid number of keys found, expected one.");
    }
    const auto only = value.begin();
    requireEmptyCase(only.value());
    if (only.key() == "session") {
        return WindowKind::session();
    }
    if (only.key() == "week") {
        return WindowKind::week();
    }
    if (only.key() == "weekModel") {
        std::string model = decodeText(requireMember(only.value(), "_0"));
        if (model.empty()) {
            throw DecodingError("A model without a name has no key.");
        }
        return WindowKind::weekModel(std::move(model));
    }
    throw DecodingError("Invalid number of keys found, expected one.");
}

void PrintTo(const WindowKind& kind, std::ostream* out) {
    *out << kind.key();
}

}  // namespace vorn
