#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "core/data/rate_limits.hpp"

namespace vorn {

/// The limits that Claude Code handed to its status-line command beside the two of a snapshot: weeks of single models,
/// others, credits.
struct MoreLimits {
    Instant observedAt;
    RateLimits limits{};

    /// Empty when the input tells of none.
    static std::optional<MoreLimits> from(std::string_view statusLineInput, Instant now);

    /// Puts them in the file's place as one step; other writers are kept away, and waited for at most 5 ms: false when
    /// that was not enough. Throws std::filesystem::filesystem_error; the old content then stands.
    [[nodiscard]] bool write(const std::filesystem::path& file) const;

    bool operator==(const MoreLimits&) const = default;
};

/// As the relay left them last. They are as old as they say: the newest snapshot may have come without any. Empty when
/// the file is missing or damaged.
std::optional<MoreLimits> readMoreLimits(const std::filesystem::path& file);

}  // namespace vorn
