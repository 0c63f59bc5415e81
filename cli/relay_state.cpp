#include "cli/relay_state.hpp"

#include <algorithm>

#include "core/data/shared_choices.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/status_line/status_line_connection.hpp"
#include "core/status_line/status_line_snapshot.hpp"
#include "core/transcripts/local_activity_scanner.hpp"
#include "core/transcripts/transcript_files.hpp"
#include "core/wording/connection_words.hpp"
#include "core/wording/format.hpp"

namespace vorn::cli {
namespace {

using Kind = ConnectionState::Kind;

/// Shorter than any silence that is worth a word.
constexpr Seconds kQuiet = std::chrono::hours{1};
/// How far back the replies are read that show Claude Code in use.
constexpr Seconds kLookback = std::chrono::hours{5};

bool hasTranscriptAfter(Instant moment) {
    bool isThere = false;
    visitTranscripts(LocalActivityScanner::defaultRoot(), moment,
                     [&](const std::string&, const FileStatus&) { isThere = true; });
    return isThere;
}

std::vector<Instant> repliesUntil(Instant now, const ActivitySummary* activity) {
    std::vector<Instant> replies;
    const auto take = [&](const ActivitySummary& summary) {
        for (const ActivityEvent& event : summary.events()) {
            replies.push_back(event.timestamp);
        }
    };
    if (activity != nullptr) {
        take(*activity);
    } else {
        take(ActivitySummary(LocalActivityScanner(LocalActivityScanner::defaultRoot(), kLookback).scan(now)));
    }
    std::ranges::sort(replies);
    return replies;
}

}  // namespace

RelayState readRelayState() try {
    std::error_code ignored;
    return {.connection = connectionState(StatusLineConnection::current(),
                                          strongerSettings(std::filesystem::current_path(ignored)))};
} catch (const IntegrationError& error) {
    return {.problem = ConnectionWords::problem(error)};
}

RelayState readRelayState(Instant now, const ActivitySummary* activity) {
    RelayState relay = readRelayState();
    if (!relay.problem.empty() || relay.connection.kind != Kind::connected || !relay.connection.connectedAt) {
        return relay;
    }
    Instant heardAt = *relay.connection.connectedAt;
    if (const auto snapshot = StatusLineSnapshot::read(VornPaths::statusLineSnapshot())) {
        heardAt = std::max(heardAt, snapshot->observedAt);
    }
    const bool mayRead = loadSharedChoices(VornPaths::sharedChoices()).useLocalActivity;
    if (now - heardAt < kQuiet || !mayRead || !hasTranscriptAfter(heardAt + kQuiet)) {
        return relay;
    }
    relay.silentSince = silentSince(heardAt, repliesUntil(now, activity));
    const auto told = ConnectionNote::read(VornPaths::connectionNote()).toldSilenceAt;
    relay.isSilenceNews = relay.silentSince && (!told || *told < heardAt);
    return relay;
}

void rememberSilenceTold(Instant now) try {
    ConnectionNote note = ConnectionNote::read(VornPaths::connectionNote());
    note.toldSilenceAt = now;
    note.write(VornPaths::connectionNote());
} catch (const std::filesystem::filesystem_error&) {
    // Then it is said again.
}

const char* key(const RelayState& relay) {
    if (!relay.problem.empty()) {
        return "unknown";
    }
    switch (relay.connection.kind) {
        case Kind::connected:
            return relay.silentSince ? "notHeard" : "connected";
        case Kind::unheard:
            return "notHeard";
        case Kind::needsReconnecting:
            return "needsReconnecting";
        case Kind::othersCommand:
            return "notVorns";
        case Kind::notConnected:
            break;
    }
    return "notConnected";
}

std::string problemOf(const RelayState& relay, Instant now) {
    if (!relay.problem.empty()) {
        return relay.problem;
    }
    if (relay.connection.unheard) {
        return ConnectionWords::reason(*relay.connection.unheard);
    }
    if (relay.connection.kind == Kind::othersCommand) {
        return ConnectionWords::othersCommand(relay.connection.command);
    }
    return relay.silentSince ? ConnectionWords::silence(*relay.silentSince, now) : "";
}

std::string sentence(const RelayState& relay, Instant now) {
    if (!relay.problem.empty()) {
        return relay.problem;
    }
    switch (relay.connection.kind) {
        case Kind::connected:
            if (!relay.silentSince) {
                return "Status line connected";
            }
            return relay.isSilenceNews ? "Status line not heard: " + problemOf(relay, now)
                                       : "Status line not heard since " + Format::clock(*relay.silentSince, now);
        case Kind::unheard:
            return "Status line not heard: " + problemOf(relay, now);
        case Kind::needsReconnecting:
            return "Status line needs reconnecting: run vornctl connect";
        case Kind::othersCommand:
            return "Status line not connected: " + problemOf(relay, now);
        case Kind::notConnected:
            break;
    }
    return "Status line not connected: vornctl connect gives a reading after every turn";
}

}  // namespace vorn::cli
