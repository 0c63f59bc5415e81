#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/analysis/history_index.hpp"
#include "core/data/history/history_store.hpp"
#include "core/data/outcome.hpp"

namespace vorn {

class BackgroundQueue;

/// The history for the main thread: always in memory and indexed, read and written in the background.
class HistoryKeeper {
public:
    /// `disk` must outlive the keeper. `outcomes`: where what the readings tell of each limit is kept; may be absent.
    HistoryKeeper(std::unique_ptr<HistoryStore> store, std::optional<OutcomeStore> outcomes, BackgroundQueue& disk);

    /// Reads the file; `done` runs on the main thread. Only the first call counts.
    void load(const std::function<void()>& done);
    /// Whether the file has been read. Until then nothing may be added.
    [[nodiscard]] bool isLoaded() const { return m_isLoaded; }

    /// Records what is new in the readings; false when nothing was. The file follows.
    bool add(std::span<const UsageWindow> windows, Instant now, HistoryStore::Stored stored);
    /// For a demonstration: other samples, from no file.
    void replace(std::vector<HistorySample> samples);

    [[nodiscard]] const std::vector<HistorySample>& samples() const { return m_samples; }
    /// The readings to start from, see `HistoryStore::newestCurrent`. Only once loaded: else it would wait for the
    /// file.
    [[nodiscard]] std::vector<UsageWindow> newestCurrent(Instant now) const { return m_store->newestCurrent(now); }
    [[nodiscard]] const HistoryIndex& index() const { return m_index; }
    /// The last attempt to write failed: part of the history is in memory alone.
    [[nodiscard]] bool isUnsaved() const { return m_isUnsaved; }

    /// Called on the main thread when writing pruned `samples`, or changed whether something is unsaved.
    std::function<void()> onFlushed;

private:
    struct Content;

    static Content read(HistoryStore& store);
    void take(Content content);
    void flush(Instant now);
    void finishFlush(HistoryStore::Flushed flushed);

    const std::optional<OutcomeStore> m_outcomes;
    const std::shared_ptr<HistoryStore> m_store;  ///< Shared with the job that is reading or writing.
    BackgroundQueue& m_disk;
    std::vector<HistorySample> m_samples;
    HistoryIndex m_index;
    bool m_isLoading = false;
    bool m_isLoaded = false;
    /// Whether a write waits for its turn; shared with the job that it is.
    const std::shared_ptr<std::atomic<bool>> m_isFlushQueued = std::make_shared<std::atomic<bool>>(false);
    bool m_isUnsaved = false;
    bool m_isDetached = false;  ///< A demonstration: file and store are not touched.
};

}  // namespace vorn
