#include "core/status_line/connection_state.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "core/status_line/status_line_command.hpp"
#include "core/support/file.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kLargest = std::size_t{64} << 20U;
constexpr Seconds kSilence = std::chrono::hours{1};
#ifdef __APPLE__
constexpr const char* kManaged = "/Library/Application Support/ClaudeCode";
#else
constexpr const char* kManaged = "/etc/claude-code";
#endif

bool isFile(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

JSONValue read(const fs::path& path) try {
    const auto text = readFile(path, kLargest);
    return text ? JSONValue::parse(*text) : JSONValue();
} catch (const JSONValue::ParseError&) {
    return {};
}

std::vector<fs::path> managedSettings() {
    const fs::path folder = kManaged;
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder / "managed-settings.d", error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().extension() == ".json") {
            files.push_back(entry->path());
        }
    }
    // A later one wins over an earlier one, and all of them over the single file.
    std::ranges::sort(files, std::greater<>());
    files.push_back(folder / "managed-settings.json");
    return files;
}

std::optional<Unheard> relayProblem(const fs::path& relay) {
    if (::access(relay.c_str(), X_OK) == 0 && isFile(relay)) {
        return std::nullopt;
    }
    struct stat status {};
    const bool isMissing = ::stat(relay.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
    return Unheard{.reason = isMissing ? Unheard::Reason::relayMissing : Unheard::Reason::relayCannotRun,
                   .file = relay};
}

/// `files`: the strongest first.
std::optional<Unheard> hooksProblem(const std::vector<fs::path>& files) {
    for (const fs::path& file : files) {
        const JSONValue settings = read(file);
        const JSONValue* disabled = settings.member("disableAllHooks");
        if (disabled != nullptr && disabled->boolean() != nullptr) {
            return *disabled->boolean() ? std::optional(Unheard{.reason = Unheard::Reason::hooksDisabled, .file = file})
                                        : std::nullopt;
        }
    }
    return std::nullopt;
}

std::optional<Unheard> overridingLine(const std::vector<fs::path>& files, const fs::path& relay) {
    for (const fs::path& file : files) {
        const JSONValue settings = read(file);
        const JSONValue* line = settings.member("statusLine");
        if (line == nullptr) {
            continue;
        }
        const StatusLineCommand command = classify(line, relay);
        if (command.kind == StatusLineCommand::Kind::relay || command.kind == StatusLineCommand::Kind::filtered) {
            return std::nullopt;
        }
        return Unheard{.reason = Unheard::Reason::overridden, .file = file, .command = command.text};
    }
    return std::nullopt;
}

std::optional<Unheard> whyUnheard(const StatusLineIntegration::Locations& places, const fs::path& relay,
                                  const StrongerSettings& stronger) {
    if (auto problem = relayProblem(relay)) {
        return problem;
    }
    std::vector<fs::path> files = stronger.managed;
    std::error_code ignored;
    std::ranges::copy_if(stronger.project, std::back_inserter(files),
                         [&](const fs::path& file) { return !fs::equivalent(file, places.settings, ignored); });
    if (auto line = overridingLine(files, places.bridge)) {
        return line;
    }
    files.push_back(places.settings);
    return hooksProblem(files);
}

std::optional<Instant> recordedAt(const StatusLineIntegration& integration) try {
    const auto record = integration.readRecord();
    return record ? std::optional(record->installedAt) : std::nullopt;
} catch (const IntegrationError&) {
    return std::nullopt;
}

}  // namespace

StrongerSettings strongerSettings(const fs::path& directory) {
    StrongerSettings stronger{.managed = managedSettings(), .project = {}};
    for (fs::path place = directory; !place.empty(); place = place.parent_path()) {
        const fs::path folder = place / ".claude";
        const std::vector<fs::path> files = {folder / "settings.local.json", folder / "settings.json"};
        if (std::ranges::any_of(files, isFile)) {
            stronger.project = files;
            break;
        }
        if (place == place.parent_path()) {
            break;
        }
    }
    return stronger;
}

ConnectionState connectionState(const StatusLineIntegration& integration, const StrongerSettings& stronger) {
    using Kind = StatusLineCommand::Kind;
    const JSONValue::Object settings = integration.readSettings();
    const auto found = settings.find("statusLine");
    const StatusLineCommand line =
        classify(found == settings.end() ? nullptr : &found->second, integration.locations().bridge);
    ConnectionState state{.downstream = integration.downstreamCommand()};
    state.connectedAt = recordedAt(integration);
    switch (line.kind) {
        case Kind::none:
        case Kind::users:
            return state;
        case Kind::otherRelay:
            state.kind = ConnectionState::Kind::needsReconnecting;
            state.command = line.text;
            return state;
        case Kind::wrapped:
        case Kind::mention:
            state.kind = ConnectionState::Kind::othersCommand;
            state.command = line.text;
            return state;
        case Kind::relay:
        case Kind::filtered:
            break;
    }
    state.unheard = whyUnheard(integration.locations(), line.relay, stronger);
    state.kind = state.unheard ? ConnectionState::Kind::unheard : ConnectionState::Kind::connected;
    return state;
}

std::optional<Instant> silentSince(Instant heardAt, const std::vector<Instant>& replies) {
    const auto first = std::ranges::upper_bound(replies, heardAt);
    return first != replies.end() && replies.back() - *first >= kSilence ? std::optional(*first) : std::nullopt;
}

}  // namespace vorn
