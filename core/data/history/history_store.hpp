#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <span>
#include <vector>

#include "core/data/history/history_file.hpp"
#include "core/data/history_sample.hpp"

namespace vorn {

/// Every meaningful reading of the last days, in memory and as one JSON object a line in a file. Safe to call from any
/// thread. Nothing here throws: a file that cannot be read is an empty history, one that cannot be written leaves the
/// history in memory, and its lines are tried again with the next record.
class HistoryStore {
public:
    static constexpr Seconds defaultRetention{8 * 86400.0};
    static constexpr Seconds defaultHeartbeat{600};
    /// How long a write may wait for another process that is writing.
    static constexpr std::chrono::milliseconds defaultPatience{50};

    /// Does not touch the file. `retention`: how long samples are kept; `heartbeat`: the longest gap after which an
    /// unchanged reading is recorded again, so that rates see that time passed without use.
    explicit HistoryStore(std::filesystem::path file, Seconds retention = defaultRetention,
                          Seconds heartbeat = defaultHeartbeat, std::chrono::milliseconds patience = defaultPatience);

    /// All samples; the file is read on the first call. Sorted by time after loading, new ones follow. What another
    /// process records meanwhile shows after a restart or a prune.
    std::vector<HistorySample> all();

    /// As `newestCurrent` of all samples, with the source of each reading: what a process may start from.
    std::vector<UsageWindow> newestCurrent(Instant now);

    /// Appends what is new in `windows`, in memory and to the file; prunes when the oldest sample is more than a day
    /// past its retention. A reading with a number that is not finite is passed over.
    void record(std::span<const UsageWindow> windows, Instant now);

    // The two halves of `record`, for a thread that must not wait for the disk. Once the file has been read, `add`
    // returns at once whatever `flush` is doing.

    /// Whether the file has the readings already.
    enum class Stored : std::uint8_t {
        notYet,
        byAnotherProcess,  ///< which was told the same and has written it
    };
    /// Appends what is new in `windows`, in memory alone. Returns what was appended.
    std::vector<HistorySample> add(std::span<const UsageWindow> windows, Instant now, Stored stored = Stored::notYet);

    struct Flushed {
        bool isSaved = true;       ///< The file has everything.
        bool isRewritten = false;  ///< Samples went, or came from other processes: `all` is no longer what it was.
    };
    /// Brings the file up to date and prunes.
    Flushed flush(Instant now);

private:
    void loadIfNeeded();
    [[nodiscard]] bool isNew(const HistorySample& candidate, Instant now) const;
    bool forgetUnsaved(std::size_t count);

    const HistoryFile m_file;
    const Seconds m_retention;
    const Seconds m_heartbeat;

    std::mutex m_writing;  ///< Held for a whole `flush`, and taken before the other one.
    std::mutex m_mutex;    ///< Guards everything below; held while the file is read, never while it is written.
    bool m_loaded = false;
    RecordedReadings m_readings;
    RecordedReadings m_unsaved;  ///< Those of `m_readings` that are not in the file yet.
};

}  // namespace vorn
