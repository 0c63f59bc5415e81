#include "core/data/history_store.hpp"

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
    return m_samples;
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
            m_samples.push_back(candidate);
            added.push_back(std::move(candidate));
        }
    }
    if (stored == Stored::notYet) {
        m_unsaved.insert(m_unsaved.end(), added.begin(), added.end());
    }
    return added;
}

HistoryStore::Flushed HistoryStore::flush(Instant now) {
    const std::lock_guard writing(m_writing);
    const Instant cutoff = now - m_retention;
    std::unique_lock lock(m_mutex);
    if (m_unsaved.empty()) {
        return {};
    }
    const bool isPruneDue = m_samples.front().observedAt < cutoff - kPruneSlack;
    if (!isPruneDue) {
        const std::vector<HistorySample> lines = m_unsaved;
        lock.unlock();
        return {.isSaved = m_file.append(lines) && forgetUnsaved(lines.size())};
    }
    dropBefore(cutoff);
    const std::size_t unsaved = m_unsaved.size();
    const std::size_t known = m_samples.size();
    std::vector<HistorySample> samples = m_samples;
    lock.unlock();
    const bool isSaved = m_file.rewrite(samples, cutoff) && forgetUnsaved(unsaved);
    lock.lock();
    // What was added meanwhile follows what was merged.
    samples.insert(samples.end(), m_samples.begin() + static_cast<std::ptrdiff_t>(known), m_samples.end());
    m_samples = std::move(samples);
    return {.isSaved = isSaved, .isRewritten = true};
}

bool HistoryStore::forgetUnsaved(std::size_t count) {
    const std::lock_guard lock(m_mutex);
    m_unsaved.erase(m_unsaved.begin(), m_unsaved.begin() + static_cast<std::ptrdiff_t>(count));
    return true;
}

void HistoryStore::loadIfNeeded() {
    if (std::exchange(m_loaded, true)) {
        return;
    }
    m_samples = m_file.read();
    if (!std::ranges::is_sorted(m_samples, {}, &HistorySample::observedAt)) {
        std::ranges::stable_sort(m_samples, {}, &HistorySample::observedAt);
    }
}

bool HistoryStore::isNew(const HistorySample& candidate, Instant now) const {
    if (!candidate.isFinite()) {
        return false;
    }
    // Samples from before the clock was set back would keep out all others until it has caught up.
    const Instant latest = std::max(now + kClockSlack, candidate.observedAt);
    const auto last = std::find_if(m_samples.rbegin(), m_samples.rend(), [&](const HistorySample& sample) {
        return sample.kindKey == candidate.kindKey && sample.observedAt <= latest;
    });
    if (last == m_samples.rend()) {
        return true;
    }
    if (last->observedAt >= candidate.observedAt) {
        return false;
    }
    const bool isUnchanged =
        sameReset(last->resetsAt, candidate.resetsAt) && last->usedPercent == candidate.usedPercent;
    return !isUnchanged || candidate.observedAt - last->observedAt >= m_heartbeat;
}

void HistoryStore::dropBefore(Instant cutoff) {
    const auto isOld = [&](const HistorySample& sample) {
        return sample.observedAt < cutoff;
    };
    std::erase_if(m_samples, isOld);
    std::erase_if(m_unsaved, isOld);
    m_samples.shrink_to_fit();
}

}  // namespace vorn
