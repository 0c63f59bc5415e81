#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "core/status_line/connection_note.hpp"
#include "core/status_line/integration_error.hpp"
#include "core/status_line/integration_record.hpp"
#include "core/status_line/settings_backups.hpp"
#include "core/support/file.hpp"
#include "core/support/json_value.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// Puts Vorn's relay in front of the user's own status-line command in Claude Code's settings, and takes it out again.
/// Everything throws IntegrationError and nothing else. Safe against other writers of the settings, against other
/// Vorns, and against being killed: the settings are always the old or the new ones, and the user's own status line is
/// in them or in the record.
class StatusLineIntegration {
public:
    struct State {
        enum class Kind : std::uint8_t {
            stale,  ///< Some relay runs, but not this one, or not as it should.
            notInstalled,
            installed,
        };
        Kind kind = Kind::notInstalled;
        std::string command{};  ///< The command found; only when stale.
        bool operator==(const State&) const = default;
    };

    using Record = IntegrationRecord;

    /// The settings file before and after a change.
    struct Change {
        std::optional<std::string> before;  ///< Absent without a file.
        std::string after;
        bool operator==(const Change&) const = default;
    };

    /// What is to be recorded before the settings change.
    struct Recording {
        std::optional<Record> record{};  ///< Absent to keep the one that there is.
        Provenance provenance{};         ///< How the new record's status line is known.
        bool leavesSettings = false;     ///< They run the relay already, in a way that shall stay.
    };
    using RecordChoice = std::function<Recording(const JSONValue::Object& members)>;
    /// The members that the settings shall have once they are disconnected. The record is absent when it is missing or
    /// damaged.
    using Restoring = std::function<JSONValue::Object(JSONValue::Object members, const std::optional<Record>& record)>;

    struct Locations {
        std::filesystem::path settings;  ///< Claude Code's user settings.
        std::filesystem::path record;
        std::filesystem::path bridge;  ///< The relay that the settings shall run; absolute.
    };

    explicit StatusLineIntegration(Locations locations) : m_locations(std::move(locations)) {}

    /// "settings.json" in Claude Code's configuration directory.
    static std::filesystem::path defaultSettings();

    [[nodiscard]] const Locations& locations() const { return m_locations; }

    [[nodiscard]] State state() const;
    /// The members of the settings; none without a file or in an empty one.
    [[nodiscard]] JSONValue::Object readSettings() const;
    /// A file that is not exactly what Vorn left there is copied first (see SettingsBackups).
    void writeSettings(const JSONValue::Object& settings) const;

    /// Connects, or reconnects. The user's own status line goes to the record before the settings change.
    void install(Instant now) const;
    /// The same with a record of the caller's choice, made for the settings as they are then; what it throws passes
    /// through, and nothing has changed. A status line that this or an older record holds is in a copy of the settings
    /// before the record is written.
    void install(const RecordChoice& choose) const;
    /// What `install` would write to the settings.
    [[nodiscard]] Change plannedInstall() const;
    /// Puts the recorded status line back and removes the record.
    void uninstall() const;
    /// The same with settings of the caller's choice, as above. What the record holds and the settings then do not is
    /// in a copy of the settings before it goes. Settings that Vorn made and that say nothing any more are removed:
    /// true when they were.
    [[nodiscard]] bool uninstall(const Restoring& restore) const;
    static IntegrationError noRecord();

    /// The user's own command, which the relay runs; empty when there is none.
    [[nodiscard]] std::optional<std::string> downstreamCommand() const;
    /// The same once `install` has run.
    [[nodiscard]] std::optional<std::string> plannedDownstreamCommand() const;

    /// Empty when it is missing or damaged. Throws IntegrationError when it cannot be read.
    [[nodiscard]] std::optional<Record> readRecord() const;
    void writeRecord(const Record& record) const;

    /// Where the copy of the user's settings lies that was made before Vorn first changed them.
    [[nodiscard]] std::filesystem::path backup() const { return backups().first(); }
    [[nodiscard]] SettingsBackups backups() const { return SettingsBackups(m_locations.settings); }
    /// "connection.json" beside the record.
    [[nodiscard]] std::filesystem::path noteFile() const;

private:
    struct Settings;
    [[nodiscard]] FileLock lockOut() const;
    [[nodiscard]] Settings load() const;
    [[nodiscard]] bool replace(const Settings& old, const JSONValue::Object& members) const;
    template <typename Edit>
    void edit(Edit change) const;
    [[nodiscard]] std::string expectedCommand() const;
    [[nodiscard]] JSONValue::Object connected(JSONValue::Object members) const;
    [[nodiscard]] Recording usualRecording(const JSONValue::Object& members, Instant now) const;
    void backUp(const Settings& settings) const;
    void secure(const std::optional<JSONValue>& statusLine, const JSONValue::Object& members) const;
    void record(const Settings& old, const Recording& recording) const;
    [[nodiscard]] bool removeOwnEmptySettings() const;

    Locations m_locations;
};

}  // namespace vorn
