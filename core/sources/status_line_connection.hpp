#pragma once

#include "core/sources/status_line_integration.hpp"

/// Connecting and disconnecting as a user asks for it, in the application and in a terminal alike.
namespace vorn::StatusLineConnection {

/// For Claude Code's settings and Vorn's own places as the environment has them now.
StatusLineIntegration current();

/// Copies the relay that came with the running program into place and puts it in front of the user's own status line.
/// Throws IntegrationError; the settings are then as they were.
void connect(const StatusLineIntegration& integration, Instant now);

/// Puts the user's own status line back. A status line that the user has chosen since, over Vorn's, is left alone: then
/// only the record goes. Throws IntegrationError, without a record as well; the settings are then as they were.
void disconnect(const StatusLineIntegration& integration);

}  // namespace vorn::StatusLineConnection
