#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/status_line/status_line_integration.hpp"

namespace vorn {

/// Why a relay that the user's settings run is not heard all the same.
struct Unheard {
    enum class Reason : std::uint8_t {
        relayMissing,    ///< There is no such file.
        relayCannotRun,  ///< It may not be executed.
        hooksDisabled,   ///< `disableAllHooks` is on, and status lines count as hooks.
        overridden,      ///< Settings that win over the user's have a status line of their own.
    };
    Reason reason = Reason::relayMissing;
    std::filesystem::path file{};  ///< The relay, or the settings that are to blame.
    std::string command{};         ///< What runs instead; only when overridden, and then it may be empty.
    bool operator==(const Unheard&) const = default;
};

/// How Vorn stands with Claude Code's status line.
struct ConnectionState {
    enum class Kind : std::uint8_t {
        notConnected,
        connected,          ///< And nothing is known that keeps it from working.
        needsReconnecting,  ///< Another relay runs: the one of another home, or of one that was moved or deleted.
        othersCommand,      ///< The command mentions a relay and is not Vorn's, so Vorn leaves it alone.
        unheard,
    };
    Kind kind = Kind::notConnected;
    std::string command{};                    ///< The command found; when it needs reconnecting or is another's.
    std::optional<std::string> downstream{};  ///< The user's own command behind the relay.
    std::optional<Unheard> unheard{};         ///< Present when unheard.
    std::optional<Instant> connectedAt{};     ///< When the record was made; absent where it cannot be read.
    bool operator==(const ConnectionState&) const = default;
};

/// The settings that win over the user's, the strongest first.
struct StrongerSettings {
    std::vector<std::filesystem::path> managed;
    std::vector<std::filesystem::path> project;
};
/// Those of this system, and those of the project that `directory` (which may be empty: none) belongs to: the nearest
/// directory from there upwards that has any.
StrongerSettings strongerSettings(const std::filesystem::path& directory);

/// Throws IntegrationError when the user's settings cannot be read. Other settings that cannot be read count as empty.
ConnectionState connectionState(const StatusLineIntegration& integration, const StrongerSettings& stronger);

/// Since when nothing has been heard of a connected relay although Claude Code was in use: the first of the replies
/// after `heardAt`, once they stretch over an hour. Empty otherwise. `replies`: their times, in order.
std::optional<Instant> silentSince(Instant heardAt, const std::vector<Instant>& replies);

}  // namespace vorn
