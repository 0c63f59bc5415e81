#pragma once

#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/data/usage_window.hpp"

namespace vorn {

/// One persisted reading of one limit.
struct HistorySample {
    std::string kindKey;              ///< `WindowKind::key()`; kept even when it no longer names a kind.
    double usedPercent = 0;           ///< Exactly as it was read.
    std::optional<Instant> resetsAt;  ///< When the window ends.
    Instant observedAt;               ///< When the reading was taken, not when it was recorded.

    static HistorySample of(const UsageWindow& window) {
        return {window.kind.key(), window.usedPercent, window.resetsAt, window.observedAt};
    }

    [[nodiscard]] std::optional<WindowKind> kind() const { return WindowKind::fromKey(kindKey); }
    /// The same instance of the same window: equal key and `sameReset`.
    [[nodiscard]] bool sameWindow(const UsageWindow& window) const {
        return kindKey == window.kind.key() && sameReset(resetsAt, window.resetsAt);
    }

    /// Neither of its numbers is infinite or none.
    [[nodiscard]] bool isFinite() const;

    bool operator==(const HistorySample&) const = default;
};

/// The readings that still hold at `now`, one a kind and ordered by kind, as a process without readings of its own may
/// start from. For each key that names a kind it is the latest sample observed up to `now` (of equal times the later in
/// the input), provided that its reset lies after `now`, or, where it has no reset time, that less than the window's
/// length has passed since. `sources`: where each reading came from; without them it is the usage command.
std::vector<UsageWindow> newestCurrent(std::span<const HistorySample> samples, Instant now,
                                       std::span<const DataSource> sources = {});

/// For test failures.
void PrintTo(const HistorySample& sample, std::ostream* out);

}  // namespace vorn
