#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/support/json_value.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// Copies of Claude Code's settings beside them: "settings.json.vorn-backup", as they were before Vorn first changed
/// them, and "settings.json.vorn-backup.1", ".2", … of every other state that Vorn did not write itself. Everything
/// that writes throws std::filesystem::filesystem_error, and is for a caller that keeps other Vorns out.
class SettingsBackups {
public:
    struct Backup {
        std::filesystem::path path;
        Instant keptAt;  ///< When the copy was made.
        bool isReadable = false;
        std::optional<JSONValue> statusLine;  ///< Absent when the copy has none, or cannot be read.
    };

    explicit SettingsBackups(std::filesystem::path settings) : m_settings(std::move(settings)) {}

    /// Where the first one lies, once there is one.
    [[nodiscard]] std::filesystem::path first() const;
    /// Those that there are, oldest first.
    [[nodiscard]] std::vector<Backup> all() const;
    /// The newest whose status line is exactly that; empty without one.
    [[nodiscard]] std::optional<Backup> holding(const JSONValue& statusLine) const;
    /// The newest whose status line, if it has any, has nothing to do with a relay.
    [[nodiscard]] std::optional<Backup> newestOwn() const;

    /// Copies the text of the settings: as the first one when there is none, else numbered, unless the newest says the
    /// same. Then removes numbered ones beyond the newest five whose status line some other copy has as well.
    void keep(std::string_view text) const;
    /// The same, always numbered.
    void keepNumbered(std::string_view text) const;
    /// What writers that were killed left.
    void removeAbandoned() const;

private:
    struct Numbered {
        std::filesystem::path path;
        unsigned long number = 0;
    };
    [[nodiscard]] std::vector<Numbered> numbered() const;
    [[nodiscard]] std::filesystem::path next() const;
    void prune() const;

    std::filesystem::path m_settings;
};

}  // namespace vorn
