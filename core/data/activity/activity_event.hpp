#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/support/shared_text.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// Tokens of one reply, by what they cost.
struct TokenCounts {
    std::int64_t input = 0;
    std::int64_t output = 0;
    std::int64_t cacheRead = 0;
    std::int64_t cacheWrite5m = 0;  ///< Written to the five-minute cache.
    std::int64_t cacheWrite1h = 0;  ///< Written to the one-hour cache.

    [[nodiscard]] std::int64_t total() const { return input + output + cacheRead + cacheWrite5m + cacheWrite1h; }
    /// Cost-weighted tokens: relative to one input token of a Sonnet model.
    [[nodiscard]] double weight(std::string_view model) const { return weightSixtieths(model) / 60; }
    /// Sixty times the weight. A whole number, so sums of it are exact (up to 2^53) in whatever order they are formed.
    [[nodiscard]] double weightSixtieths(std::string_view model) const;
    TokenCounts& operator+=(const TokenCounts& other);
    bool operator==(const TokenCounts&) const = default;
};

/// What a token of this model costs relative to a Sonnet model: a third for a name with "haiku", 1 for "sonnet", else
/// 5/3.
double familyMultiplier(std::string_view model);

/// What the work in a directory is called: its last component (trailing slashes do not count, "/" stays "/"); "Unknown"
/// when `cwd` is empty. Points into `cwd` or at a constant.
std::string_view projectName(std::string_view cwd);

/// One assistant reply that used tokens.
struct ActivityEvent {
    Instant timestamp;  ///< When the reply was written.
    SharedText model;   ///< "unknown" when the transcript does not say.
    SharedText cwd;     ///< Working directory of the conversation; may be empty.
    TokenCounts tokens;

    [[nodiscard]] double weight() const { return tokens.weight(model); }
    /// See `projectName`.
    [[nodiscard]] std::string project() const { return std::string(projectName(cwd)); }
    bool operator==(const ActivityEvent&) const = default;
};

}  // namespace vorn
