#pragma once

#include <optional>
#include <string>

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

    bool operator==(const HistorySample&) const = default;
};

}  // namespace vorn
