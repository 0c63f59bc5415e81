#include "core/data/history_store.hpp"

#include <algorithm>
#include <utility>

#include "core/data/history_line.hpp"

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
    const std::lock_guard lock(m_mutex);
    loadIfNeeded();
    for (const UsageWindow& window : windows) {
        if (auto candidate = HistorySample::of(window); isNew(candidate)) {
            m_unsaved.push_back(candidate);
            m_samples.push_back(std::move(candidate));
        }
    }
    if (!m_unsaved.empty() && save(now)) {
        m_unsaved.clear();
    }
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

bool HistoryStore::isNew(const HistorySample& candidate) const {
    if (!isStorable(candidate)) {
        return false;
    }
    const auto last = std::find_if(m_samples.rbegin(), m_samples.rend(),
                                   [&](const HistorySample& sample) { return sample.kindKey == candidate.kindKey; });
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

bool HistoryStore::save(Instant now) {
    const Instant cutoff = now - m_retention;
    if (m_samples.empty() || m_samples.front().observedAt >= cutoff - kPruneSlack) {
        return m_file.append(m_unsaved);
    }
    dropBefore(cutoff);
    return m_file.rewrite(m_samples, cutoff);
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
