#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "core/sources/integration_error.hpp"
#include "core/sources/json_value.hpp"
#include "core/support/file.hpp"
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

    /// What it takes to put everything back.
    struct Record {
        std::optional<JSONValue> originalStatusLine;  ///< As it was, of whatever type; absent when there was none.
        Instant installedAt{};                        ///< Kept to whole seconds.
        bool operator==(const Record&) const = default;
    };

    /// The settings file before and after a change.
    struct Change {
        std::optional<std::string> before;  ///< Absent without a file.
        std::string after;
        bool operator==(const Change&) const = default;
    };

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
    /// The user's file is first copied to "settings.json.vorn-backup", once and for all.
    void writeSettings(const JSONValue::Object& settings) const;

    /// Connects, or reconnects. The user's own status line goes to the record before the settings change.
    void install(Instant now) const;
    /// What `install` would write to the settings.
    [[nodiscard]] Change plannedInstall() const;
    /// Puts the recorded status line back and removes the record.
    void uninstall() const;

    /// The user's own command, which the relay runs; empty when there is none.
    [[nodiscard]] std::optional<std::string> downstreamCommand() const;
    /// The same once `install` has run.
    [[nodiscard]] std::optional<std::string> plannedDownstreamCommand() const;

    /// Empty when it is missing or damaged. Throws IntegrationError when it cannot be read.
    [[nodiscard]] std::optional<Record> readRecord() const;
    void writeRecord(const Record& record) const;

    /// Where the one-time copy of the user's settings lies.
    [[nodiscard]] std::filesystem::path backup() const;

private:
    struct Settings;
    [[nodiscard]] FileLock lockOut() const;
    [[nodiscard]] Settings load() const;
    [[nodiscard]] bool replace(const Settings& old, const JSONValue::Object& members) const;
    template <typename Edit>
    void edit(Edit change) const;
    [[nodiscard]] std::string expectedCommand() const;
    [[nodiscard]] JSONValue::Object connected(JSONValue::Object members) const;
    void keepOriginal(const JSONValue::Object& members, Instant now) const;

    Locations m_locations;
};

}  // namespace vorn
