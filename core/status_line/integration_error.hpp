#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace vorn {

/// Why Claude Code's status line could not be read, connected or disconnected; `what()` is made for the user. Whatever
/// the kind, the settings are as they were.
class IntegrationError : public std::runtime_error {
public:
    enum class Kind : std::uint8_t {
        unreadableSettings,
        unreadableRecord,
        noRecord,       ///< The user's own status line is not known, so it cannot be put back.
        bridgeMissing,  ///< No relay to be found near the running program.
        notWritten,     ///< The disk, the rights or somebody else got in the way.
        refused,        ///< It would take something from somebody; see ConnectionRefused.
    };
    IntegrationError(Kind kind, const std::string& description) : std::runtime_error(description), m_kind(kind) {}

    static IntegrationError unreadableSettings(const std::string& reason) {
        return {Kind::unreadableSettings, "Couldn't read Claude Code settings: " + reason};
    }

    [[nodiscard]] Kind kind() const noexcept { return m_kind; }

private:
    Kind m_kind;
};

}  // namespace vorn
