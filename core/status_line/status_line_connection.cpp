#include "core/status_line/status_line_connection.hpp"

#include <utility>

#include <sys/stat.h>

#include "core/data/vorn_paths.hpp"
#include "core/status_line/bridge_installer.hpp"
#include "core/support/executable_path.hpp"
#include "core/support/home_owner.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

constexpr const char* kMember = "statusLine";
constexpr const char* kCommand = "command";
constexpr const char* kType = "type";

using LineKind = StatusLineCommand::Kind;
using Reason = ConnectionRefused::Reason;
using Record = StatusLineIntegration::Record;
using Recording = StatusLineIntegration::Recording;

const JSONValue* statusLineOf(const JSONValue::Object& members) {
    const auto found = members.find(kMember);
    return found == members.end() ? nullptr : &found->second;
}

ConnectionRefused othersCommand(const StatusLineIntegration& integration, const std::string& command) {
    return ConnectionRefused(
        {.reason = Reason::othersCommand, .place = integration.locations().settings, .command = command});
}

/// False only where it is known that there is no such file: a directory that may not be searched proves nothing.
bool mayBeThere(const fs::path& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

/// The home of the relay that the settings run instead of this one.
struct OtherHome {
    fs::path directory;
    bool isThere = false;
    std::optional<Record> record;  ///< Absent when it cannot be read, or cannot be what the user had.
    Provenance provenance;
};

OtherHome otherHome(const fs::path& relay) {
    const fs::path folder = relay.parent_path();
    const fs::path directory = folder.filename() == "bin" ? folder.parent_path() : folder;
    OtherHome other{.directory = directory, .isThere = mayBeThere(relay), .record = {}, .provenance = {}};
    if (!other.isThere) {
        return other;
    }
    const StatusLineIntegration theirs({.settings = {}, .record = directory / "integration.json", .bridge = relay});
    try {
        other.record = theirs.readRecord();
    } catch (const IntegrationError&) {
        // As good as none.
    }
    if (other.record) {
        const auto& original = other.record->originalStatusLine;
        if (mentionsRelay(commandOf(original ? &*original : nullptr))) {
            other.record.reset();
            return other;
        }
        // An absent status line is only known to have been absent where they know it.
        const Provenance known = ConnectionNote::read(theirs.noteFile()).provenanceOf(other.record->installedAt);
        other.provenance = original || known.kind == Provenance::Kind::settings
                               ? Provenance{.kind = Provenance::Kind::otherHome, .file = directory}
                               : known;
    }
    return other;
}

/// One attempt to connect, judged by the settings as they are then.
class Attempt {
public:
    Attempt(const StatusLineIntegration& integration, Instant now, bool replaces)
        : m_integration(integration), m_now(now), m_replaces(replaces) {}

    Recording choose(const JSONValue::Object& members) {
        const JSONValue* existing = statusLineOf(members);
        const StatusLineCommand line = classify(existing, m_integration.locations().bridge);
        m_outcome = {};
        switch (line.kind) {
            case LineKind::none:
            case LineKind::users:
                return fresh(existing);
            case LineKind::relay:
                m_outcome.kind = line.relay == m_integration.locations().bridge
                                     ? StatusLineConnection::Connected::Kind::again
                                     : StatusLineConnection::Connected::Kind::reconnected;
                return own();
            case LineKind::filtered: {
                m_outcome.kind = StatusLineConnection::Connected::Kind::filtered;
                Recording recording = own();
                recording.leavesSettings = true;
                return recording;
            }
            case LineKind::otherRelay:
                return fromOtherHome(line);
            case LineKind::wrapped:
            case LineKind::mention:
                break;
        }
        if (!m_replaces) {
            throw othersCommand(m_integration, line.text);
        }
        m_outcome.kind = StatusLineConnection::Connected::Kind::reconnected;
        m_outcome.replaced = line.text;
        return instead();
    }

    /// Of the last choice.
    [[nodiscard]] StatusLineConnection::Connected outcome() const { return m_outcome; }

private:
    Recording fresh(const JSONValue* existing) {
        m_outcome.kind = StatusLineConnection::Connected::Kind::fresh;
        return known(
            {.originalStatusLine = existing == nullptr ? std::nullopt : std::optional(*existing), .installedAt = m_now},
            {.kind = Provenance::Kind::settings});
    }

    /// What comes of a record with that status line.
    void tell(const std::optional<JSONValue>& original, const Provenance& provenance) {
        const std::string* command = commandOf(original ? &*original : nullptr);
        if (command != nullptr && !mentionsRelay(command)) {
            m_outcome.downstream = *command;
        }
        m_outcome.provenance = provenance;
    }

    Recording known(Record record, Provenance provenance) {
        tell(record.originalStatusLine, provenance);
        return {.record = std::move(record), .provenance = std::move(provenance)};
    }

    /// From this home's record, else from the copies of the settings.
    Recording own() {
        if (const auto record = m_integration.readRecord()) {
            tell(record->originalStatusLine,
                 ConnectionNote::read(m_integration.noteFile()).provenanceOf(record->installedAt));
            return {};  // it is there
        }
        if (auto copy = m_integration.backups().newestOwn()) {
            return known({.originalStatusLine = std::move(copy->statusLine), .installedAt = m_now},
                         {.kind = Provenance::Kind::backup, .file = copy->path, .date = copy->keptAt});
        }
        return known({.originalStatusLine = {}, .installedAt = m_now}, {});
    }

    /// For settings that do not say what this home's record says: one without a status line is then no proof that the
    /// user had none.
    Recording instead() {
        const auto record = m_integration.readRecord();
        if (!record || record->originalStatusLine) {
            return own();
        }
        if (auto copy = m_integration.backups().newestOwn(); copy && copy->statusLine) {
            return known({.originalStatusLine = std::move(copy->statusLine), .installedAt = m_now},
                         {.kind = Provenance::Kind::backup, .file = copy->path, .date = copy->keptAt});
        }
        return known({.originalStatusLine = {}, .installedAt = m_now}, {});
    }

    Recording fromOtherHome(const StatusLineCommand& line) {
        m_outcome.kind = StatusLineConnection::Connected::Kind::reconnected;
        const OtherHome other = otherHome(line.relay);
        if (!other.isThere) {
            return instead();
        }
        if (other.record) {
            return known({.originalStatusLine = other.record->originalStatusLine, .installedAt = m_now},
                         other.provenance);
        }
        if (!m_replaces) {
            throw ConnectionRefused({.reason = Reason::otherHome, .place = other.directory, .command = line.text});
        }
        return instead();
    }

    const StatusLineIntegration& m_integration;
    Instant m_now;
    bool m_replaces;
    StatusLineConnection::Connected m_outcome;
};

/// The user's status line as it was, with what they changed on the connected one since.
std::optional<JSONValue> merged(const Record& record, const JSONValue* current) {
    if (!record.originalStatusLine || record.originalStatusLine->object() == nullptr || current == nullptr ||
        current->object() == nullptr) {
        return record.originalStatusLine;
    }
    JSONValue::Object result = *record.originalStatusLine->object();
    const auto isVorns = [](const std::string& key) {
        return key == kCommand || key == kType;
    };
    for (const auto& [key, value] : *record.originalStatusLine->object()) {
        if (!isVorns(key) && current->member(key) == nullptr) {
            result.erase(key);
        }
    }
    for (const auto& [key, value] : *current->object()) {
        if (!isVorns(key)) {
            result[key] = value;
        }
    }
    return JSONValue(std::move(result));
}

struct Known {
    Record record;
    Provenance provenance;
};

/// The record of whichever home's relay the settings run.
Known requireRecord(const StatusLineIntegration& integration, const StatusLineCommand& line,
                    const std::optional<Record>& own) {
    if (line.kind == LineKind::otherRelay) {
        const OtherHome other = otherHome(line.relay);
        if (other.record) {
            return {.record = *other.record, .provenance = other.provenance};
        }
        if (other.isThere) {
            throw ConnectionRefused({.reason = Reason::otherHome, .place = other.directory, .command = line.text});
        }
    }
    if (line.kind == LineKind::mention) {
        throw othersCommand(integration, line.text);
    }
    if (!own) {
        throw StatusLineIntegration::noRecord();
    }
    if (line.kind == LineKind::otherRelay && !own->originalStatusLine) {
        // What the other home, which is gone, had recorded is not known by this one's having nothing.
        auto copy = integration.backups().newestOwn();
        if (copy && copy->statusLine) {
            return {.record = {.originalStatusLine = std::move(copy->statusLine), .installedAt = own->installedAt},
                    .provenance = {.kind = Provenance::Kind::backup, .file = copy->path, .date = copy->keptAt}};
        }
        return {.record = *own, .provenance = {}};
    }
    return {.record = *own, .provenance = ConnectionNote::read(integration.noteFile()).provenanceOf(own->installedAt)};
}

/// The members of the disconnected settings.
JSONValue::Object disconnected(const StatusLineIntegration& integration, JSONValue::Object members,
                               const std::optional<Record>& own, StatusLineConnection::Disconnected& outcome) {
    using Kind = StatusLineConnection::Disconnected::Kind;
    const JSONValue* current = statusLineOf(members);
    const StatusLineCommand line = classify(current, integration.locations().bridge);
    auto [record, provenance] = requireRecord(integration, line, own);
    outcome = {.provenance = std::move(provenance)};
    if (line.kind == LineKind::none || line.kind == LineKind::users) {
        const bool isAsRecorded = record.originalStatusLine
                                      ? current != nullptr && *current == *record.originalStatusLine
                                      : current == nullptr;
        outcome.kind = isAsRecorded ? Kind::restored : current != nullptr ? Kind::leftAlone : Kind::leftEmpty;
        return members;
    }
    if (line.kind == LineKind::filtered || line.kind == LineKind::wrapped) {
        outcome.replaced = line.text;
    }
    if (auto restored = merged(record, current)) {
        members[kMember] = *std::move(restored);
    } else {
        members.erase(kMember);
    }
    return members;
}

/// Where a line is that the settings do not hold any more.
fs::path copyOf(const StatusLineIntegration& integration, const JSONValue* statusLine) {
    const auto copy = statusLine == nullptr ? std::nullopt : integration.backups().holding(*statusLine);
    return copy ? copy->path : fs::path();
}

}  // namespace

ConnectionRefused::ConnectionRefused(Details details)
    : IntegrationError(Kind::refused, "Nothing was changed: " + details.place.string()),
      m_details(std::move(details)) {}

namespace StatusLineConnection {

StatusLineIntegration current() {
    // Claude Code runs the relay in directories of its own.
    return StatusLineIntegration({.settings = fs::absolute(StatusLineIntegration::defaultSettings()),
                                  .record = fs::absolute(VornPaths::integrationRecord()),
                                  .bridge = fs::absolute(VornPaths::bridgeExecutable())});
}

void requireOwnHome(const StatusLineIntegration& integration) {
    const auto& places = integration.locations();
    for (const fs::path& place : {places.settings.parent_path(), places.record.parent_path()}) {
        if (auto owner = strangersHome(place)) {
            throw ConnectionRefused({.reason = Reason::strangersHome, .place = place, .owner = *std::move(owner)});
        }
    }
}

Planned plannedConnect(const StatusLineIntegration& integration, Instant now, bool replaces) {
    requireOwnHome(integration);
    Attempt attempt(integration, now, replaces);
    const Recording recording = attempt.choose(integration.readSettings());
    Planned planned{.change = integration.plannedInstall(), .outcome = attempt.outcome()};
    if (recording.leavesSettings) {
        planned.change.after = planned.change.before.value_or("");
    }
    return planned;
}

Connected connect(const StatusLineIntegration& integration, Instant now, bool replaces) {
    const fs::path relay = BridgeInstaller::find(runningExecutable());
    // What cannot be done is told before anything is copied.
    [[maybe_unused]] const Planned possible = plannedConnect(integration, now, replaces);
    BridgeInstaller::install(relay, integration.locations().bridge);
    Attempt attempt(integration, now, replaces);
    std::optional<JSONValue> before;
    integration.install([&](const JSONValue::Object& members) {
        const JSONValue* existing = statusLineOf(members);
        before = existing == nullptr ? std::nullopt : std::optional(*existing);
        return attempt.choose(members);
    });
    Connected outcome = attempt.outcome();
    if (!outcome.replaced.empty()) {
        outcome.replacedIn = copyOf(integration, before ? &*before : nullptr);
    }
    return outcome;
}

Disconnected disconnect(const StatusLineIntegration& integration) {
    requireOwnHome(integration);
    Disconnected outcome;
    // What cannot be done is told before anything is made.
    [[maybe_unused]] const auto possible =
        disconnected(integration, integration.readSettings(), integration.readRecord(), outcome);
    std::optional<JSONValue> before;
    std::optional<JSONValue> original;
    const bool isGone = integration.uninstall([&](JSONValue::Object members, const std::optional<Record>& own) {
        const JSONValue* existing = statusLineOf(members);
        before = existing == nullptr ? std::nullopt : std::optional(*existing);
        original = own ? own->originalStatusLine : std::nullopt;
        return disconnected(integration, std::move(members), own, outcome);
    });
    const JSONValue::Object members = integration.readSettings();
    if (const JSONValue* now = statusLineOf(members)) {
        outcome.statusLine = *now;
    }
    if (!outcome.replaced.empty()) {
        outcome.copy = copyOf(integration, before ? &*before : nullptr);
    } else if (outcome.kind != Disconnected::Kind::restored) {
        outcome.copy = copyOf(integration, original ? &*original : nullptr);
    }
    outcome.isSettingsFileGone = isGone;
    return outcome;
}

}  // namespace StatusLineConnection
}  // namespace vorn
