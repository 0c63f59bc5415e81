#include "core/status_line/status_line_integration.hpp"

#include <utility>

#include <unistd.h>

#include "core/data/claude_paths.hpp"
#include "core/status_line/status_line_command.hpp"
#include "core/support/file.hpp"
#include "core/support/text.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

constexpr const char* kMember = "statusLine";
constexpr const char* kCommand = "command";
constexpr const char* kOriginal = "originalStatusLine";
constexpr const char* kInstalledAt = "installedAt";
/// Larger than any settings by far, small enough to hold a few times over.
constexpr std::size_t kLargestSettings = std::size_t{64} << 20U;
/// Somebody who changes the settings more often than this in a row is not going to stop.
constexpr int kAttempts = 20;
constexpr std::chrono::milliseconds kPatience{2000};

IntegrationError notWritten(const fs::path& path, const std::string& reason) {
    return {IntegrationError::Kind::notWritten, "Couldn't write " + path.string() + ": " + reason};
}

/// Runs a step that writes, and says in a user's words why it failed.
template <typename Step>
auto writing(const fs::path& path, Step step) {
    try {
        return step();
    } catch (const fs::filesystem_error& error) {
        const bool isBusy = error.code() == std::errc::device_or_resource_busy;
        throw notWritten(path, isBusy ? "another Vorn is at work" : error.code().message());
    }
}

const JSONValue* statusLineOf(const JSONValue::Object& members) {
    const auto found = members.find(kMember);
    return found == members.end() ? nullptr : &found->second;
}

std::string fileText(const JSONValue::Object& members) {
    return JSONValue(members).dump() + "\n";
}

std::optional<std::string> downstreamOf(const JSONValue* statusLine) {
    const std::string* command = commandOf(statusLine);
    return command == nullptr || mentionsRelay(command) ? std::nullopt : std::optional(*command);
}

std::string recordText(const StatusLineIntegration::Record& record) {
    JSONValue::Object members = {{kInstalledAt, formatIso8601(record.installedAt)}};
    if (record.originalStatusLine) {
        members[kOriginal] = *record.originalStatusLine;
    }
    return fileText(members);
}

StatusLineIntegration::Record recordOf(const JSONValue* statusLine, Instant now) {
    return {.originalStatusLine = statusLine == nullptr ? std::nullopt : std::optional(*statusLine),
            .installedAt = now};
}

/// Whether the relay, which reads no megabytes, would find the user's command in the record.
bool canBePassedOn(const JSONValue* statusLine) {
    return mentionsRelay(commandOf(statusLine)) ||
           downstreamCommandIn(recordText(recordOf(statusLine, Instant{}))) == downstreamOf(statusLine);
}

}  // namespace

/// The settings file as it was read.
struct StatusLineIntegration::Settings {
    std::optional<std::string> text;  ///< Absent without a file.
    JSONValue::Object members;
};

fs::path StatusLineIntegration::defaultSettings() {
    return ClaudePaths::configDirectory() / "settings.json";
}

StatusLineIntegration::Settings StatusLineIntegration::load() const {
    Settings settings;
    try {
        settings.text = requireFile(m_locations.settings, kLargestSettings);
        if (settings.text->empty()) {
            return settings;
        }
        const JSONValue document = JSONValue::parse(*settings.text);
        if (document.object() == nullptr) {
            throw IntegrationError::unreadableSettings("top level isn't an object");
        }
        settings.members = *document.object();
    } catch (const fs::filesystem_error& error) {
        if (error.code() != std::errc::no_such_file_or_directory) {
            throw IntegrationError::unreadableSettings(error.code().message());
        }
    } catch (const JSONValue::ParseError& error) {
        throw IntegrationError::unreadableSettings(error.what());
    }
    return settings;
}

JSONValue::Object StatusLineIntegration::readSettings() const {
    return load().members;
}

fs::path StatusLineIntegration::noteFile() const {
    return m_locations.record.parent_path() / "connection.json";
}

void StatusLineIntegration::backUp(const Settings& settings) const {
    const fs::path& path = m_locations.settings;
    if (settings.text && !ConnectionNote::read(noteFile()).isAsLeft(path, *settings.text)) {
        writing(path, [&] { backups().keep(*settings.text); });
    }
}

/// Sees to it that a copy of the settings holds this status line.
void StatusLineIntegration::secure(const std::optional<JSONValue>& statusLine, const JSONValue::Object& members) const {
    if (!statusLine || backups().holding(*statusLine)) {
        return;
    }
    JSONValue::Object held = members;
    held[kMember] = *statusLine;
    writing(m_locations.settings, [&] { backups().keepNumbered(fileText(held)); });
}

/// False when the file has not been `old` any more.
bool StatusLineIntegration::replace(const Settings& old, const JSONValue::Object& members) const {
    const fs::path& path = m_locations.settings;
    return writing(path, [&] {
        createPrivateDirectories(fs::absolute(path).parent_path());
        // Replacing takes no right to write the file itself, so whoever protected it is asked here.
        if (old.text && ::access(path.c_str(), W_OK) != 0) {
            throw notWritten(path, std::error_code(errno, std::generic_category()).message());
        }
        backUp(old);
        ConnectionNote note = ConnectionNote::read(noteFile());
        const std::string text = fileText(members);
        const bool isOurs =
            !old.text || (note.settings && note.settings->isMadeByVorn && note.isAsLeft(path, *old.text));
        // Noted before it is true: whoever is killed in between only gets a copy of the settings too many.
        note.settings = ConnectionNote::describe(path, text);
        note.settings->isMadeByVorn = isOurs;
        note.write(noteFile());
        const auto isUnchanged = [&] {
            std::error_code error;
            return old.text ? readFile(path, kLargestSettings) == old.text : !fs::exists(path, error);
        };
        return replaceFile({.path = path, .content = text, .isStillWanted = isUnchanged});
    });
}

void StatusLineIntegration::writeSettings(const JSONValue::Object& settings) const {
    edit([&](const Settings&) { return settings; });
}

/// `change` gets the settings and returns their new members; it runs again when somebody else was quicker.
template <typename Edit>
void StatusLineIntegration::edit(Edit change) const {
    for (int i = 0; i < kAttempts; ++i) {
        const Settings old = load();
        const JSONValue::Object members = change(std::as_const(old));
        // What says the same already keeps its layout.
        if ((old.text && !old.text->empty() && members == old.members) || replace(old, members)) {
            return;
        }
    }
    throw notWritten(m_locations.settings, "another program keeps changing it");
}

std::string StatusLineIntegration::expectedCommand() const {
    return relayCommand(m_locations.bridge);
}

StatusLineIntegration::State StatusLineIntegration::state() const {
    const JSONValue::Object members = readSettings();
    const std::string* command = commandOf(statusLineOf(members));
    if (command != nullptr && *command == expectedCommand()) {
        return {.kind = State::Kind::installed};
    }
    if (mentionsRelay(command)) {
        return {.kind = State::Kind::stale, .command = *command};
    }
    return {};
}

JSONValue::Object StatusLineIntegration::connected(JSONValue::Object members) const {
    const std::string command = expectedCommand();
    if (repairUtf8(command) != command) {
        throw notWritten(m_locations.settings, "the path of Vorn's relay is not valid UTF-8");
    }
    const JSONValue* existing = statusLineOf(members);
    if (!canBePassedOn(existing)) {
        // Better not connected than a status line that has gone quiet.
        throw IntegrationError::unreadableSettings("the status line holds what Vorn's relay cannot pass on");
    }
    JSONValue::Object statusLine;
    if (existing != nullptr && existing->object() != nullptr) {
        statusLine = *existing->object();
    }
    statusLine["type"] = "command";
    statusLine[kCommand] = command;
    members[kMember] = std::move(statusLine);
    if (fileText(members).size() > kLargestSettings) {
        // Written with a line for every value, what is nested deep takes up to hundreds of times the room that it had.
        throw IntegrationError::unreadableSettings("written out anew it would be too large to be read again");
    }
    return members;
}

StatusLineIntegration::Recording StatusLineIntegration::usualRecording(const JSONValue::Object& members,
                                                                       Instant now) const {
    const JSONValue* existing = statusLineOf(members);
    if (!mentionsRelay(commandOf(existing))) {
        return {.record = recordOf(existing, now), .provenance = {.kind = Provenance::Kind::settings}};
    }
    return {.record = readRecord() ? std::nullopt : std::optional(recordOf(nullptr, now))};
}

void StatusLineIntegration::record(const Settings& old, const Recording& recording) const {
    const auto before = readRecord();
    if (before) {
        secure(before->originalStatusLine, old.members);
    }
    if (!recording.record) {
        return;
    }
    secure(recording.record->originalStatusLine, old.members);
    ConnectionNote note = ConnectionNote::read(noteFile());
    note.recordedAt = recording.record->installedAt;
    note.provenance = recording.provenance;
    writing(noteFile(), [&] { note.write(noteFile()); });
    writeRecord(*recording.record);
}

StatusLineIntegration::Change StatusLineIntegration::plannedInstall() const {
    const Settings old = load();
    const JSONValue::Object members = connected(old.members);
    return {.before = old.text, .after = old.text && members == old.members ? *old.text : fileText(members)};
}

std::optional<std::string> StatusLineIntegration::plannedDownstreamCommand() const {
    const JSONValue::Object members = readSettings();
    const JSONValue* existing = statusLineOf(members);
    return mentionsRelay(commandOf(existing)) ? downstreamCommand() : downstreamOf(existing);
}

void StatusLineIntegration::install(Instant now) const {
    install([&](const JSONValue::Object& members) { return usualRecording(members, now); });
}

void StatusLineIntegration::install(const RecordChoice& choose) const {
    const FileLock lock = lockOut();
    edit([&](const Settings& old) {
        const Recording recording = choose(old.members);
        JSONValue::Object changed = recording.leavesSettings ? old.members : connected(old.members);
        if (changed != old.members) {
            backUp(old);
        }
        record(old, recording);
        return changed;
    });
}

IntegrationError StatusLineIntegration::noRecord() {
    return {IntegrationError::Kind::noRecord, "Vorn has no record of your own status line, so nothing was changed."};
}

void StatusLineIntegration::uninstall() const {
    [[maybe_unused]] const JSONValue::Object readable = readSettings();
    if (!readRecord()) {
        throw noRecord();
    }
    const FileLock lock = lockOut();
    edit([&](const Settings& old) {
        const auto record = readRecord();
        if (!record) {
            throw noRecord();
        }
        JSONValue::Object members = old.members;
        if (record->originalStatusLine) {
            members[kMember] = *record->originalStatusLine;
        } else {
            members.erase(kMember);
        }
        return members;
    });
    std::error_code ignored;
    fs::remove(m_locations.record, ignored);
}

bool StatusLineIntegration::uninstall(const Restoring& restore) const {
    const FileLock lock = lockOut();
    edit([&](const Settings& old) {
        const auto record = readRecord();
        JSONValue::Object members = restore(old.members, record);
        const JSONValue* restored = statusLineOf(members);
        if (members != old.members) {
            backUp(old);
        }
        if (record && (restored == nullptr || record->originalStatusLine != *restored)) {
            secure(record->originalStatusLine, old.members);
        }
        return members;
    });
    std::error_code ignored;
    fs::remove(m_locations.record, ignored);
    return removeOwnEmptySettings();
}

bool StatusLineIntegration::removeOwnEmptySettings() const {
    const ConnectionNote note = ConnectionNote::read(noteFile());
    const auto text = readFile(m_locations.settings, kLargestSettings);
    std::error_code ignored;
    return note.settings && note.settings->isMadeByVorn && text == fileText({}) &&
           note.isAsLeft(m_locations.settings, *text) &&
           !fs::is_symlink(fs::symlink_status(m_locations.settings, ignored)) &&
           fs::remove(m_locations.settings, ignored);
}

FileLock StatusLineIntegration::lockOut() const {
    FileLock lock = writing(m_locations.record, [&] { return FileLock::beside(m_locations.record, kPatience); });
    removeAbandonedTemporaries(m_locations.settings);
    backups().removeAbandoned();
    removeAbandonedTemporaries(m_locations.record);
    removeAbandonedTemporaries(noteFile());
    return lock;
}

std::optional<std::string> StatusLineIntegration::downstreamCommand() const {
    return vorn::downstreamCommand(m_locations.record);
}

std::optional<StatusLineIntegration::Record> StatusLineIntegration::readRecord() const {
    try {
        const auto text = readToReplace(m_locations.record, kLargestSettings);
        return text ? integrationRecordIn(*text) : std::nullopt;
    } catch (const fs::filesystem_error& error) {
        throw IntegrationError(IntegrationError::Kind::unreadableRecord,
                               "Couldn't read " + m_locations.record.string() + ": " + error.code().message());
    }
}

void StatusLineIntegration::writeRecord(const Record& record) const {
    writing(m_locations.record, [&] {
        createPrivateDirectories(fs::absolute(m_locations.record).parent_path());
        replaceFile(m_locations.record, recordText(record));
    });
}

}  // namespace vorn
