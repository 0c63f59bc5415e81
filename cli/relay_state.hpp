#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/data/activity/activity_summary.hpp"
#include "core/status_line/connection_state.hpp"

namespace vorn::cli {

/// How Vorn stands with Claude Code's status line.
struct RelayState {
    ConnectionState connection{};
    std::string problem{};                 ///< Why it is not known; then nothing else counts.
    std::optional<Instant> silentSince{};  ///< Nothing comes although Claude Code is in use.
    bool isSilenceNews = false;            ///< Which the user has not been told.
};

/// As the settings have it, those of the project in the working directory included.
RelayState readRelayState();
/// The same, with what the transcripts (of which `activity`, unless null, holds the last hours already) say of a relay
/// that has long been silent. Costs little while it is heard.
RelayState readRelayState(Instant now, const ActivitySummary* activity);
/// From now on the present silence is no news. Failing is no harm.
void rememberSilenceTold(Instant now);

/// "connected", "notHeard", "needsReconnecting", "notVorns", "notConnected", "unknown"
const char* key(const RelayState& relay);
/// A sentence, with what to do where there is something to do.
std::string sentence(const RelayState& relay, Instant now);
/// What keeps figures from coming, in a sentence; empty where nothing does.
std::string problemOf(const RelayState& relay, Instant now);

}  // namespace vorn::cli
