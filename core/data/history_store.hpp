#pragma once

#include <chrono>
#include <filesystem>
#include <mutex>
#include <span>
#include <vector>

#include "core/data/history_sample.hpp"

namespace vorn {

/// Every meaningful reading of the last days, in memory and as one JSON object a line in a file. Safe to call from any
/// thread. Nothing here throws or reports: a file that cannot be read is an empty history, one that cannot be written
/// leaves the history in memory.
class HistoryStore {
public:
    static constexpr Seconds defaultRetention{8 * 86400.0};
    static constexpr Seconds defaultHeartbeat{600};

    /// Does not touch the file. `retention`: how long samples are kept; `heartbeat`: the longest gap after which an
    /// unchanged reading is recorded again, so that rates see that time passed without use.
    explicit HistoryStore(std::filesystem::path file, Seconds retention = defaultRetention,
                          Seconds heartbeat = defaultHeartbeat);

    /// All samples; the file is read on the first call. Sorted by time after loading, new ones follow.
    std::vector<HistorySample> all();

    /// Appends what is new in `windows`, in memory and to the file; prunes when the oldest sample is more than a day
    /// past its retention.
    void record(std::span<const UsageWindow> windows, Instant now);
};

}  // namespace vorn
