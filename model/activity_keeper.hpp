#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "model/model_sources.hpp"

namespace vorn {

/// Local activity as it was last read, on the main thread.
class ActivityKeeper {
public:
    explicit ActivityKeeper(std::unique_ptr<ActivitySource> source) : m_source(std::move(source)) {}

    /// Reads what is new in the background, unless that is being done. `done` comes when there is something new.
    void scan(Instant now, std::function<void()> done);
    /// When the last scan began; empty before the first.
    [[nodiscard]] std::optional<Instant> lastScan() const { return m_lastScan; }

    /// Null until the first scan has ended, in whatever way. A summary that has not changed stays the same object.
    [[nodiscard]] const std::shared_ptr<const ActivitySummary>& summary() const { return m_summary; }
    /// For a demonstration: this instead, for good.
    void replace(ActivitySummary summary);

private:
    std::unique_ptr<ActivitySource> m_source;  ///< Null once replaced.
    std::shared_ptr<const ActivitySummary> m_summary;
    std::optional<Instant> m_lastScan;
    bool m_isScanning = false;
};

}  // namespace vorn
