#include "core/sources/status_line_integration.hpp"

#include <utility>

#include <unistd.h>

#include "core/sources/claude_locator.hpp"
#include "core/sources/integration_record.hpp"
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

const std::string* commandOf(const JSONValue* statusLine) {
    const JSONValue* command = statusLine == nullptr ? nullptr : statusLine->member(kCommand);
    return command == nullptr ? nullptr : command->string();
}

bool runsBridge(const std::string* command) {
    return command != nullptr && command->find(kBridgeName) != std::string::npos;
}

const JSONValue* statusLineOf(const JSONValue::Object& members) {
    const auto found = members.find(kMember);
    return found == members.end() ? nullptr : &found->second;
}

/// As one word of the shell.
std::string quoted(const std::string& text) {
    std::string word = "'";
    for (const char c : text) {
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return word + "'";
}

std::string fileText(const JSONValue::Object& members) {
    return JSONValue(members).dump() + "\n";
}

std::optional<std::string> downstreamOf(const JSONValue* statusLine) {
    const std::string* command = commandOf(statusLine);
    return command == nullptr || runsBridge(command) ? std::nullopt : std::optional(*command);
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

/// Whether the relay, whose smaller reader knows neither numbers beyond all measure nor megabytes, would find the
/// user's command in the record.
bool canBePassedOn(const JSONValue* statusLine) {
    return runsBridge(commandOf(statusLine)) ||
           downstreamCommandIn(recordText(recordOf(statusLine, Instant{}))) == downstreamOf(statusLine);
}

}  // namespace

/// The settings file as it was read.
struct StatusLineIntegration::Settings {
    std::optional<std::string> text;  ///< Absent without a file.
    JSONValue::Object members;
};

fs::path StatusLineIntegration::defaultSettings() {
    return ClaudeLocator::configDirectory() / "settings.json";
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

fs::path StatusLineIntegration::backup() const {
    return m_locations.settings.string() + ".vorn-backup";
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
        // Neither a file that Vorn has already changed nor one that it made is the user's.
        const bool isUsersOwn =
            old.text && !runsBridge(commandOf(statusLineOf(old.members))) && *old.text != fileText({});
        std::error_code ignored;
        if (isUsersOwn && !fs::exists(fs::symlink_status(backup(), ignored))) {
            replaceFile({.path = backup(), .content = *old.text, .model = path});
        }
        const auto isUnchanged = [&] {
            std::error_code error;
            return old.text ? readFile(path, kLargestSettings) == old.text : !fs::exists(path, error);
        };
        return replaceFile({.path = path, .content = fileText(members), .isStillWanted = isUnchanged});
    });
}

void StatusLineIntegration::writeSettings(const JSONValue::Object& settings) const {
    edit([&](const JSONValue::Object&) { return settings; });
}

/// `change` gets the members of the settings and returns the new ones; it runs again when somebody else was quicker.
template <typename Edit>
void StatusLineIntegration::edit(Edit change) const {
    for (int i = 0; i < kAttempts; ++i) {
        const Settings old = load();
        const JSONValue::Object members = change(std::as_const(old.members));
        // What says the same already keeps its layout.
        if ((old.text && !old.text->empty() && members == old.members) || replace(old, members)) {
            return;
        }
    }
    throw notWritten(m_locations.settings, "another program keeps changing it");
}

std::string StatusLineIntegration::expectedCommand() const {
    return quoted(m_locations.bridge.string()) + " --chain";
}

StatusLineIntegration::State StatusLineIntegration::state() const {
    const JSONValue::Object members = readSettings();
    const std::string* command = commandOf(statusLineOf(members));
    if (command != nullptr && *command == expectedCommand()) {
        return {.kind = State::Kind::installed};
    }
    if (runsBridge(command)) {
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

void StatusLineIntegration::keepOriginal(const JSONValue::Object& members, Instant now) const {
    const JSONValue* existing = statusLineOf(members);
    if (!runsBridge(commandOf(existing))) {
        writeRecord(recordOf(existing, now));
    } else if (!readRecord()) {
        writeRecord({.originalStatusLine = std::nullopt, .installedAt = now});
    }
}

StatusLineIntegration::Change StatusLineIntegration::plannedInstall() const {
    const Settings old = load();
    const JSONValue::Object members = connected(old.members);
    return {.before = old.text, .after = old.text && members == old.members ? *old.text : fileText(members)};
}

std::optional<std::string> StatusLineIntegration::plannedDownstreamCommand() const {
    const JSONValue::Object members = readSettings();
    const JSONValue* existing = statusLineOf(members);
    return runsBridge(commandOf(existing)) ? downstreamCommand() : downstreamOf(existing);
}

void StatusLineIntegration::install(Instant now) const {
    const FileLock lock = lockOut();
    edit([&](const JSONValue::Object& members) {
        JSONValue::Object changed = connected(members);
        keepOriginal(members, now);
        return changed;
    });
}

void StatusLineIntegration::uninstall() const {
    const auto requireRecord = [&] {
        auto record = readRecord();
        if (!record) {
            throw IntegrationError(IntegrationError::Kind::noRecord,
                                   "Vorn has no record of your own status line, so nothing was changed.");
        }
        return *std::move(record);
    };
    [[maybe_unused]] const JSONValue::Object readable = readSettings();
    [[maybe_unused]] const Record present = requireRecord();
    const FileLock lock = lockOut();
    edit([&](JSONValue::Object members) {
        if (auto original = requireRecord().originalStatusLine) {
            members[kMember] = *std::move(original);
        } else {
            members.erase(kMember);
        }
        return members;
    });
    std::error_code ignored;
    fs::remove(m_locations.record, ignored);
}

FileLock StatusLineIntegration::lockOut() const {
    FileLock lock = writing(m_locations.record, [&] { return FileLock::beside(m_locations.record, kPatience); });
    removeAbandonedTemporaries(m_locations.settings);
    removeAbandonedTemporaries(backup());
    removeAbandonedTemporaries(m_locations.record);
    return lock;
}

std::optional<std::string> StatusLineIntegration::downstreamCommand() const {
    return vorn::downstreamCommand(m_locations.record);
}

std::optional<StatusLineIntegration::Record> StatusLineIntegration::readRecord() const {
    try {
        const auto text = readToReplace(m_locations.record, kLargestSettings);
        if (!text) {
            return std::nullopt;
        }
        const JSONValue document = JSONValue::parse(*text);
        const JSONValue* installedAt = document.member(kInstalledAt);
        const std::string* date = installedAt == nullptr ? nullptr : installedAt->string();
        const auto instant = date == nullptr ? std::nullopt : parseIso8601(*date, Fraction::forbidden);
        if (!instant) {
            return std::nullopt;
        }
        const JSONValue* original = document.member(kOriginal);
        return Record{.originalStatusLine = original == nullptr ? std::nullopt : std::optional(*original),
                      .installedAt = *instant};
    } catch (const JSONValue::ParseError&) {
        return std::nullopt;
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
