#include "model/probe_memory.hpp"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

#include "model/background_queue.hpp"

namespace vorn {
namespace {

/// For another program that is editing; only a background thread waits.
constexpr std::chrono::milliseconds kPatience{2000};

std::set<WindowKind> without(const std::set<WindowKind>& kinds, const std::set<WindowKind>& others) {
    std::set<WindowKind> rest;
    std::ranges::set_difference(kinds, others, std::inserter(rest, rest.end()));
    return rest;
}

bool saysTheSame(const UsageWindow& one, const UsageWindow& other) {
    return one.isSameInstance(other) && one.usedPercent == other.usedPercent;
}

/// One answer more that says what the last one said is no news to anybody.
bool repeats(const ProbeRecord& mine, const ProbeRecord& stored) {
    return mine.consecutiveFailures == 0 && stored.consecutiveFailures == 0 && stored.lastProbeAt.has_value() &&
           mine.expectedResets == stored.expectedResets &&
           std::ranges::equal(mine.readings, stored.readings, saysTheSame);
}

/// `seen`: what the file was last known to hold.
ProbeRecord merged(ProbeRecord mine, ProbeRecord stored, const ProbeRecord& seen) {
    std::set<WindowKind> expected = mine.expectedResets;
    expected.merge(without(stored.expectedResets, seen.expectedResets));
    const bool isNewer = stored.lastProbeAt != seen.lastProbeAt && stored.lastProbeAt > mine.lastProbeAt;
    ProbeRecord result = isNewer ? std::move(stored) : std::move(mine);
    result.expectedResets = std::move(expected);
    return result;
}

/// The record as it is now; what could not be written holds until this process ends.
ProbeRecord storeRecord(const ProbeRecordStore& store, const ProbeRecord& mine, const ProbeRecord& seen) {
    try {
        return store.edit([&](ProbeRecord& stored) { stored = merged(mine, std::move(stored), seen); }, kPatience);
    } catch (const std::filesystem::filesystem_error&) {
        return merged(mine, store.load(), seen);
    }
}

}  // namespace

/// What the saving jobs work on.
struct ProbeMemory::Shared {
    std::mutex mutex;  ///< Guards everything here.
    std::optional<ProbeRecord> wanted;
    ProbeRecord seen;  ///< What the file was last known to hold.

    /// What there is to save, with what the file was last known to hold; empty when an earlier job has done it.
    std::optional<std::pair<ProbeRecord, ProbeRecord>> take() {
        const std::lock_guard lock(mutex);
        auto mine = std::exchange(wanted, std::nullopt);
        return mine ? std::optional(std::pair(*std::move(mine), seen)) : std::nullopt;
    }
    void saw(const ProbeRecord& record) {
        const std::lock_guard lock(mutex);
        seen = record;
    }
};

ProbeMemory::ProbeMemory(ProbeRecordStore store, BackgroundQueue& disk)
    : m_store(std::move(store)), m_disk(disk), m_shared(std::make_shared<Shared>()) {}

std::optional<ProbeMemory::News> ProbeMemory::read() {
    if (m_saves > 0) {
        return std::nullopt;
    }
    // Before reading: what is written in between shows the next time.
    const auto stamp = m_store.stamp();
    if (std::exchange(m_isRead, true) && stamp == m_stamp) {
        return std::nullopt;
    }
    m_stamp = stamp;
    ProbeRecord record = m_store.load();
    m_shared->saw(record);
    return newsIn(std::move(record));
}

ProbeMemory::News ProbeMemory::newsIn(ProbeRecord record) {
    News news{.record = record, .announced = without(record.expectedResets, m_announced)};
    // While another save is under way, the file is about to have what that one brings too.
    if (m_saves == 0) {
        m_announced.clear();
    }
    m_announced.insert(record.expectedResets.begin(), record.expectedResets.end());
    m_seen = std::move(record);
    return news;
}

void ProbeMemory::save(ProbeRecord mine) {
    if (m_saves == 0 && m_store.stamp() == m_stamp && repeats(mine, m_seen)) {
        return;
    }
    m_announced.insert(mine.expectedResets.begin(), mine.expectedResets.end());  // no news to us
    {
        const std::lock_guard lock(m_shared->mutex);
        m_shared->wanted = std::move(mine);
    }
    const bool isRunning = m_disk.run([this, store = m_store, shared = m_shared] {
        std::optional<ProbeRecord> record;
        if (auto work = shared->take()) {
            record = storeRecord(store, work->first, work->second);
            shared->saw(*record);
        }
        return [this, record] {
            finishSave(record);
        };
    });
    m_saves += isRunning ? 1 : 0;
}

void ProbeMemory::finishSave(const std::optional<ProbeRecord>& record) {
    --m_saves;
    if (record && onNews) {
        onNews(newsIn(*record));
    }
}

}  // namespace vorn
