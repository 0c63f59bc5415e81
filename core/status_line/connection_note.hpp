#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "core/support/time.hpp"

namespace vorn {

/// How Vorn knows the status line that its record keeps for the user.
struct Provenance {
    enum class Kind : std::uint8_t {
        unknown,    ///< Nobody remembers; an absent status line is then no proof that there was none.
        settings,   ///< It stood in the settings when Vorn was connected.
        otherHome,  ///< From the record of another Vorn, in `file`.
        backup,     ///< From the copy of the settings in `file`, which was made at `date`.
    };
    Kind kind = Kind::unknown;
    std::filesystem::path file{};
    std::optional<Instant> date{};  ///< Whole seconds.
    bool operator==(const Provenance&) const = default;
};

/// What Vorn remembers of its own doings, in "connection.json" beside the record: losing it costs a copy of the
/// settings more and makes some sentences less certain, nothing else.
struct ConnectionNote {
    /// The settings as Vorn last left them.
    struct Settings {
        std::filesystem::path path;
        std::uint64_t size = 0;     ///< Bytes.
        std::uint64_t digest = 0;   ///< FNV-1a of the content.
        bool isMadeByVorn = false;  ///< There was no such file before.
        bool operator==(const Settings&) const = default;
    };
    std::optional<Settings> settings{};
    std::optional<Instant> recordedAt{};  ///< `installedAt` of the record that `provenance` is about.
    Provenance provenance{};
    std::optional<Instant> toldSilenceAt{};  ///< When the user was told that nothing is heard of the relay.

    bool operator==(const ConnectionNote&) const = default;

    /// Whether Vorn left this text in this file.
    [[nodiscard]] bool isAsLeft(const std::filesystem::path& path, std::string_view text) const;
    /// What is known of a record of that time.
    [[nodiscard]] Provenance provenanceOf(Instant recordedAt) const;

    static Settings describe(const std::filesystem::path& path, std::string_view text);
    /// Empty members where the file is missing or damaged.
    static ConnectionNote read(const std::filesystem::path& file);
    /// Throws std::filesystem::filesystem_error.
    void write(const std::filesystem::path& file) const;
};

}  // namespace vorn
