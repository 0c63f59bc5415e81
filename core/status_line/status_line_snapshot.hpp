#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/data/usage_window.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// The plan's limits as Claude Code handed them to its status-line command, and the file in which the relay leaves them
/// for other programs. Knows both formats.
struct StatusLineSnapshot {
    struct Limit {
        std::optional<double> usedPercentage;  ///< 0..100 as reported; neither clamped nor rounded.
        std::optional<Instant> resetsAt;       ///< As reported; not checked for plausibility.
        bool operator==(const Limit&) const = default;
    };
    struct RateLimits {
        std::optional<Limit> fiveHour;
        std::optional<Limit> sevenDay;
        bool operator==(const RateLimits&) const = default;
    };

    Instant observedAt;  ///< When the relay received the input.
    RateLimits rateLimits;
    std::optional<std::string> sessionID;
    std::optional<std::string> claudeVersion;

    /// Empty when the input is not what Claude Code sends (no JSON object, a member of the wrong type) or reports no
    /// limit's percentage. Takes linear time, and memory in proportion to the longest text and the depth of the input.
    static std::optional<StatusLineSnapshot> from(std::string_view statusLineInput, Instant now);

    /// One reading for every limit with a percentage, the session first. Never one of a single model.
    [[nodiscard]] std::vector<UsageWindow> windows() const;

    /// Puts the snapshot in the file's place as one step. False when a newer one is there already or other writers keep
    /// the file for more than 5 milliseconds. Removes what a killed writer left. Throws
    /// std::filesystem::filesystem_error; the old content then stands.
    bool write(const std::filesystem::path& file) const;

    /// Empty when the file is missing or damaged.
    static std::optional<StatusLineSnapshot> read(const std::filesystem::path& file);

    bool operator==(const StatusLineSnapshot&) const = default;
};

/// For test failures.
void PrintTo(const StatusLineSnapshot& snapshot, std::ostream* out);

}  // namespace vorn
