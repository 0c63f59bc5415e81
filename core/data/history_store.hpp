#pragma once

#include <chrono>
#include <filesystem>
#include <mutex>
#include <span>
#include <vector>

#include "core/data/history_file.hpp"
#include "core/data/history_sample.hpp"

namespace vorn {

/// Every meaningful reading of the last days, in memory and as one JSON object a line in a file. Safe to call from any
/// thread. Nothing here throws or reports: a file that cannot be read is an empty history, one that cannot be written
/// leaves the history in memory, and its lines are tried again with the next record.
class HistoryStore {
public:
    static constexpr Seconds defaultRetention{8 * 86400.0};
    static constexpr Seconds defaultHeartbeat{600};
    /// How long `record` may wait for another process that is writing: it is called on the application's main thread.
    static constexpr std::chrono::milliseconds defaultPatience{50};

    /// Does not touch the file. `retention`: how long samples are kept; `heartbeat`: the longest gap after which an
    /// unchanged reading is recorded again, so that rates see that time passed without use.
    explicit HistoryStore(std::filesystem::path file, Seconds retention = defaultRetention,
                          Seconds heartbeat = defaultHeartbeat, std::chrono::milliseconds patience = defaultPatience);

    /// All samples; the file is read on the first call. Sorted by time after loading, new ones follow. What another
    /// process records meanwhile shows after a restart or a prune.
    std::vector<HistorySample> all();

    /// Appends what is new in `windows`, in memory and to the file; prunes when the oldest sample is more than a day
    /// past its retention. A reading with a number that is not finite is passed over.
    void record(std::span<const UsageWindow> windows, Instant now);

private:
    void loadIfNeeded();
    [[nodiscard]] bool isNew(const HistorySample& candidate) const;
    void dropBefore(Instant cutoff);
    [[nodiscard]] bool save(Instant now);

    const HistoryFile m_file;
    const Seconds m_retention;
    const Seconds m_heartbeat;

    std::mutex m_mutex;  ///< Guards everything below, and is held while the file is read and written.
    bool m_loaded = false;
    std::vector<HistorySample> m_samples;
    std::vector<HistorySample> m_unsaved;  ///< Those of `m_samples` that are not in the file yet.
};

}  // namespace vorn
