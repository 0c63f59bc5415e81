#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "core/support/time.hpp"

namespace vorn {

/// Which limit a reading is about: the rolling 5-hour session, the week over all models, or the week of one model
/// family. Ordered session, week, then the model weeks by name.
class WindowKind {
public:
    enum class Case : std::uint8_t { session, week, weekModel };

    static WindowKind session() { return WindowKind(Case::session, {}); }
    static WindowKind week() { return WindowKind(Case::week, {}); }
    /// `model` as the source printed it, e.g. "Opus".
    static WindowKind weekModel(std::string model) { return WindowKind(Case::weekModel, std::move(model)); }
    /// The kind with that `key()`; empty for anything else, "week:" without a name included.
    static std::optional<WindowKind> fromKey(std::string_view key);

    [[nodiscard]] Case which() const { return m_case; }
    [[nodiscard]] bool isSession() const { return m_case == Case::session; }
    /// The model's name; empty unless `which()` is `weekModel`.
    [[nodiscard]] const std::string& modelName() const { return m_model; }

    [[nodiscard]] std::string key() const;         ///< "session", "week", "week:Opus": the form stored in files
    [[nodiscard]] std::string title() const;       ///< "Session", "Week", "Week · Opus"
    [[nodiscard]] std::string shortTitle() const;  ///< "5h", "7d", "Opus"
    /// From one reset to the next: 5 hours or 7 days.
    [[nodiscard]] Seconds length() const;

    auto operator<=>(const WindowKind&) const = default;

private:
    WindowKind(Case which, std::string model) : m_case(which), m_model(std::move(model)) {}

    Case m_case;
    std::string m_model;
};

/// `{"session":{}}`, `{"week":{}}`, `{"weekModel":{"_0":"Opus"}}`.
nlohmann::json encode(const WindowKind& kind);
/// Throws DecodingError.
WindowKind decodeWindowKind(const nlohmann::json& value);

/// For test failures.
void PrintTo(const WindowKind& kind, std::ostream* out);

}  // namespace vorn

template <>
struct std::hash<vorn::WindowKind> {
    std::size_t operator()(const vorn::WindowKind& kind) const noexcept {
        return std::hash<std::string>{}(kind.modelName()) * 3 + static_cast<std::size_t>(kind.which());
    }
};
