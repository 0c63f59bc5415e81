#include "app/model/probe_memory.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/model/background_queue.hpp"

namespace vorn {
namespace {

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

/// `seen`: what was known of `stored` when `mine` was formed.
ProbeRecord merged(ProbeRecord mine, ProbeRecord stored, const ProbeRecord& seen) {
    std::set<WindowKind> expected = mine.expectedResets;
    expected.merge(without(stored.expectedResets, seen.expectedResets));
    const bool isNewer = stored.lastProbeAt != seen.lastProbeAt && stored.lastProbeAt > mine.lastProbeAt;
    ProbeRecord result = isNewer ? std::move(stored) : std::move(mine);
    result.expectedResets = std::move(expected);
    return result;
}

}  // namespace

ProbeMemory::ProbeMemory(ProbeRecordStore store, BackgroundQueue& disk) : m_store(std::move(store)), m_disk(disk) {}

std::optional<ProbeMemory::News> ProbeMemory::read() {
    if (m_isSaving) {
        return std::nullopt;
    }
    // Before reading: what is written in between shows the next time.
    const auto stamp = m_store.stamp();
    if (std::exchange(m_isRead, true) && stamp == m_stamp) {
        return std::nullopt;
    }
    m_stamp = stamp;
    return newsIn(m_store.load());
}

ProbeMemory::News ProbeMemory::newsIn(ProbeRecord record) {
    News news{.record = record, .announced = without(record.expectedResets, m_seen.expectedResets)};
    m_seen = std::move(record);
    return news;
}

void ProbeMemory::save(ProbeRecord mine) {
    if (m_isSaving) {
        m_next = std::move(mine);
        return;
    }
    if (repeats(mine, m_seen)) {
        return;
    }
    const ProbeRecord seen = m_seen;
    m_seen.expectedResets.insert(mine.expectedResets.begin(), mine.expectedResets.end());  // no news to us
    m_isSaving = m_disk.run([this, store = m_store, mine = std::move(mine), seen] {
        const ProbeRecord record = merged(mine, store.load(), seen);
        static_cast<void>(store.save(record));
        return [this, record] {
            finishSave(record);
        };
    });
}

void ProbeMemory::finishSave(ProbeRecord record) {
    m_isSaving = false;
    const News news = newsIn(std::move(record));
    if (auto next = std::exchange(m_next, std::nullopt)) {
        save(*std::move(next));
    }
    if (onNews) {
        onNews(news);
    }
}

}  // namespace vorn
