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
    std::string problem{};                 ///< Why the state is not known; then nothing else counts.
    std::optional<Instant> silentSince{};  ///< Since when nothing comes although Claude Code is in use.
    bool isSilenceNews = false;            ///< The user has not been told of the silence yet.
};

/// The state as the settings have it, those of the project in the working directory included.
RelayState readRelayState();
/// The state with `silentSince`, for which the transcripts are read where the relay has long been silent; `activity`,
/// unless null, holds their last hours already. Costs little while the relay is heard.
RelayState readRelayState(Instant now, const ActivitySummary* activity);
/// Remembers that the user was told of the present silence. A failure to write is ignored.
void rememberSilenceTold(Instant now);

/// "connected", "notHeard", "needsReconnecting", "notVorns", "notConnected", "unknown"
const char* key(const RelayState& relay);
/// A sentence, with what to do where there is something to do.
std::string sentence(const RelayState& relay, Instant now);
/// What keeps figures from coming, in a sentence; empty where nothing does.
std::string problemOf(const RelayState& relay, Instant now);

}  // namespace vorn::cli
