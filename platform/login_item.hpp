#pragma once

#include <memory>

namespace vorn {

/// Whether the system starts Vorn when the user logs in.
class LoginItem {
public:
    /// The system's; null where it has none (a program that is not in a bundle, on macOS).
    static std::unique_ptr<LoginItem> system();

    virtual ~LoginItem() = default;
    [[nodiscard]] virtual bool isEnabled() const = 0;
    /// Throws std::runtime_error with a text for people.
    virtual void setEnabled(bool on) = 0;
};

}  // namespace vorn
