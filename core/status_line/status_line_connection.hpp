#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "core/status_line/status_line_command.hpp"
#include "core/status_line/status_line_integration.hpp"

namespace vorn {

/// Connecting or disconnecting as it stands would take something from somebody, so nothing was changed.
class ConnectionRefused : public IntegrationError {
public:
    enum class Reason : std::uint8_t {
        othersCommand,  ///< `command` mentions a relay and is not Vorn's; `place` is the settings.
        otherHome,      ///< Another Vorn's relay is at work, and its record, in the directory `place`, cannot be read.
        strangersHome,  ///< This is root, and `place` belongs to the user `owner`.
    };
    struct Details {
        Reason reason;
        std::filesystem::path place;
        std::string command{};
        std::string owner{};
    };
    explicit ConnectionRefused(Details details);
    [[nodiscard]] const Details& details() const noexcept { return m_details; }

private:
    Details m_details;
};

/// Connecting and disconnecting as a user asks for it, in the application and in a terminal alike: `install` and
/// `uninstall` of the integration, and around them what keeps people from losing a status line that they had.
namespace StatusLineConnection {

/// For Claude Code's settings and Vorn's own places as the environment has them now.
StatusLineIntegration current();

/// Throws ConnectionRefused for root in the home of somebody else. Connecting and disconnecting see to it themselves.
void requireOwnHome(const StatusLineIntegration& integration);

struct Connected {
    enum class Kind : std::uint8_t {
        fresh,
        again,        ///< It was connected already; the relay was copied afresh.
        reconnected,  ///< Another relay ran, or something else stood there that was to be replaced.
        filtered,     ///< As `again`: the user passes the relay's output through a command of their own, which stays.
    };
    Kind kind = Kind::fresh;
    std::optional<std::string> downstream{};  ///< The user's command behind the relay.
    Provenance provenance{};                  ///< How that, or that there is none, is known.
    /// A command of the user's own that was replaced, and the copy of the settings that has it.
    std::string replaced{};
    std::filesystem::path replacedIn{};
    bool operator==(const Connected&) const = default;
};

/// Copies the relay that came with the running program into place and puts it in front of the user's own status line.
/// What that is comes from the settings; where they run a relay already, from the record of that relay's home; where
/// that is gone, from the newest copy of the settings that runs none. `replaces`: what would be refused is replaced,
/// after a copy of the settings was made. Throws IntegrationError, ConnectionRefused among them; the settings are then
/// as they were.
Connected connect(const StatusLineIntegration& integration, Instant now, bool replaces = false);

struct Planned {
    StatusLineIntegration::Change change;
    Connected outcome;
};
/// What `connect` would do. Throws what it would throw.
Planned plannedConnect(const StatusLineIntegration& integration, Instant now, bool replaces = false);

struct Disconnected {
    enum class Kind : std::uint8_t {
        restored,   ///< The record's status line, with what the user changed in it since; there may have been none.
        leftAlone,  ///< The user has chosen another one since.
        leftEmpty,  ///< The user has taken the status line out since.
    };
    Kind kind = Kind::restored;
    std::optional<JSONValue> statusLine{};  ///< What the settings hold now.
    Provenance provenance{};                ///< How the record's is known.
    std::string replaced{};                 ///< A command around the relay that stood there; else empty.
    std::filesystem::path copy{};           ///< The copy of the settings with that, or with the record's status line
                                            ///< where it is not in the settings; else empty.
    bool isSettingsFileGone = false;        ///< Connecting had made it, and there was nothing else in it.
    bool operator==(const Disconnected&) const = default;
};

/// Puts the user's own status line back. One that they chose over Vorn's, or that they took out, stays so, and members
/// that they changed stay changed. Throws IntegrationError, ConnectionRefused among them and `noRecord` without a
/// record; the settings are then as they were.
Disconnected disconnect(const StatusLineIntegration& integration);

}  // namespace StatusLineConnection
}  // namespace vorn
