#pragma once

#include <filesystem>
#include <optional>

#include "platform/linux/desktop_entry.hpp"
#include "platform/login_item.hpp"

namespace vorn {

/// The desktop entry `vorn.desktop` in the autostart folders: the user's own under `$XDG_CONFIG_HOME`, which hides
/// those under `$XDG_CONFIG_DIRS`. Enabled means that this desktop would start a program that exists, be it this one or
/// another: an entry may be the user's own work.
class AutostartLoginItem final : public LoginItem {
public:
    /// `executable`: what an entry of ours starts; empty when it is not known.
    explicit AutostartLoginItem(std::filesystem::path executable) : m_executable(std::move(executable)) {}

    [[nodiscard]] bool isEnabled() const override;
    void setEnabled(bool on) override;

private:
    void enable() const;
    void disable() const;

    std::filesystem::path m_executable;
};

}  // namespace vorn
