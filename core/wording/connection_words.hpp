#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "core/status_line/connection_state.hpp"
#include "core/status_line/status_line_connection.hpp"

/// What is said about connecting Claude Code's status line, in the application and in a terminal alike. Commands and
/// paths in it are free of control characters. Nothing claims more than Vorn knows.
namespace vorn::ConnectionWords {

/// "then your own command:" with it on a line of its own, or why there is none. Ends with a line break.
std::string downstream(const StatusLineConnection::Connected& outcome);
/// What was done, with `downstream`, and what keeps it from working where something does. Ends with a line break.
std::string connected(const StatusLineConnection::Connected& outcome, const std::optional<Unheard>& unheard = {});
/// What was done, and which status line stands there now. Ends with a line break.
std::string disconnected(const StatusLineConnection::Disconnected& outcome);

/// What a person who pressed a button has to know of it beyond what they see, in sentences; empty when nothing.
std::string remark(const StatusLineConnection::Connected& outcome);
std::string remark(const StatusLineConnection::Disconnected& outcome);

/// Why it failed, and what to do where there is something to do. Several lines.
std::string problem(const IntegrationError& error);

/// Why a connected relay is not heard, and what to do.
std::string reason(const Unheard& unheard);
/// The same where Claude Code was in use from `since` on and nothing came, which has no certain reason.
std::string silence(Instant since, Instant now);
/// What a command is that mentions a relay and that Vorn leaves alone.
std::string othersCommand(const std::string& command);

/// For root in the home of somebody else (see `strangersHome`): why nothing is changed there, and why nothing is
/// stored.
std::string notChangedAsRoot(const std::filesystem::path& place, const std::string& owner);
std::string notStoredAsRoot(const std::filesystem::path& place, const std::string& owner);

}  // namespace vorn::ConnectionWords
