#include "core/data/history/history_store.hpp"

#include <algorithm>
#include <utility>

namespace vorn {
namespace {

/// How far past its retention the oldest sample has to be before the file is rewritten: about one rewrite a day.
constexpr Seconds kPruneSlack{86400};

}  // namespace

HistoryStore::HistoryStore(std::filesystem::path file, Seconds retention, Seconds heartbeat,
                           std::chrono::milliseconds patience)
    : m_file(std::move(file), patience), m_retention(retention), m_heartbeat(heartbeat) {}

std::vector<HistorySample> HistoryStore::all() {
    const std::lock_guard lock(m_mutex);
    loadIfNeeded();
    return m_readings.samples();
}

std::vector<UsageWindow> HistoryStore::newestCurrent(Instant now) {
    const std::lock_guard lock(m_mutex);
    loadIfNeeded();
    return vorn::newestCurrent(m_readings.samples(), now, m_readings.sources());
}

void HistoryStore::record(std::span<const UsageWindow> windows, Instant now) {
    add(windows, now);
    flush(now);
}

std::vector<HistorySample> HistoryStore::add(std::span<const UsageWindow> windows, Instant now, Stored stored) {
    const std::lock_guard lock(m_mutex);
    loadIfNeeded();
    std::vector<HistorySample> added;
    for (const UsageWindow& window : windows) {
        if (auto candidate = HistorySample::of(window); isNew(candidate, now)) {
            m_readings.add(candidate, window.source);
            if (stored == Stored::notYet) {
                m_unsaved.add(candidate, window.source);
            }
            added.push_back(std::move(candidate));
        }
    }
    return added;
}

HistoryStore::Flushed HistoryStore::flush(Instant now) {
    const std::lock_guard writing(m_writing);
    const Instant cutoff = now - m_retention;
    std::unique_lock lock(m_mutex);
    if (m_unsaved.isEmpty()) {
        return {};
    }
    const bool isPruneDue = m_readings.samples().front().observedAt < cutoff - kPruneSlack;
    if (!isPruneDue) {
        const RecordedReadings lines = m_unsaved;
        lock.unlock();
        return {.isSaved = m_file.append(lines) && forgetUnsaved(lines.size())};
    }
    m_unsaved.eraseBefore(cutoff);
    m_readings.eraseBefore(cutoff);
    m_readings.shrinkToFit();
    const std::size_t unsaved = m_unsaved.size();
    const std::size_t known = m_readings.size();
    RecordedReadings readings = m_readings;
    lock.unlock();
    const bool isSaved = m_file.rewrite(readings, cutoff) && forgetUnsaved(unsaved);
    lock.lock();
    // What was added meanwhile follows what was merged.
    readings.add(m_readings.from(known));
    m_readings = std::move(readings);
    return {.isSaved = isSaved, .isRewritten = true};
}

bool HistoryStore::forgetUnsaved(std::size_t count) {
    const std::lock_guard lock(m_mutex);
    m_unsaved.eraseFirst(count);
    return true;
}

void HistoryStore::loadIfNeeded() {
    if (std::exchange(m_loaded, true)) {
        return;
    }
    m_readings = m_file.read();
    m_readings.sortByTime();
}

bool HistoryStore::isNew(const HistorySample& candidate, Instant now) const {
    if (!candidate.isFinite()) {
        return false;
    }
    // Samples from before the clock was set back would keep out all others until it has caught up.
    const Instant latest = std::max(now + kClockSlack, candidate.observedAt);
    const auto& samples = m_readings.samples();
    const auto last = std::find_if(samples.rbegin(), samples.rend(), [&](const HistorySample& sample) {
        return sample.kindKey == candidate.kindKey && sample.observedAt <= latest;
    });
    if (last == samples.rend()) {
        return true;
    }
    if (last->observedAt >= candidate.observedAt) {
        return false;
    }
    const bool isUnchanged =
        sameReset(last->resetsAt, candidate.resetsAt) && last->usedPercent == candidate.usedPercent;
    return !isUnchanged || candidate.observedAt - last->observedAt >= m_heartbeat;
}

}  // namespace vorn
