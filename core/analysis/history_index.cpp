#include "core/analysis/history_index.hpp"

#include <algorithm>
#include <cmath>

namespace vorn {

void HistoryIndex::update(std::span<const HistorySample> history) {
    if (!continues(history)) {
        *this = HistoryIndex();
    }
    for (const HistorySample& sample : history.subspan(m_count)) {
        add(sample);
    }
    if (!history.empty()) {
        m_first = history.front();
        m_last = history.back();
    }
}

/// A history only grows at its end or loses its oldest samples, so its first and last known samples tell.
bool HistoryIndex::continues(std::span<const HistorySample> history) const {
    if (m_count == 0) {
        return true;
    }
    return history.size() >= m_count && history.front() == m_first && history[m_count - 1] == m_last;
}

void HistoryIndex::add(const HistorySample& sample) {
    const std::size_t position = m_count++;
    if (sample.resetsAt && !std::isfinite(secondsSince1970(*sample.resetsAt))) {
        return;  // near no reset time, and a NaN has no place in an ordered map
    }
    auto kind = m_kinds.find(sample.kindKey);
    if (kind == m_kinds.end()) {
        kind = m_kinds.emplace(sample.kindKey, Resets()).first;
    }
    Resets& resets = kind->second;
    // Nearly every sample repeats the newest reset time: spare it the search.
    const bool isNewest = !resets.empty() && resets.rbegin()->first == sample.resetsAt;
    std::vector<Entry>& entries = isNewest ? resets.rbegin()->second : resets[sample.resetsAt];
    entries.push_back({position, {sample.observedAt, sample.usedPercent}});
}

MatchingSamples HistoryIndex::matching(const UsageWindow& window) const {
    const auto kind = m_kinds.find(window.kind.key());
    if (kind == m_kinds.end()) {
        return {};
    }
    std::vector<Entry> entries = sameResetEntries(kind->second, window.resetsAt);
    if (!std::ranges::is_sorted(entries, {}, &Entry::position)) {
        std::ranges::sort(entries, {}, &Entry::position);
    }
    std::vector<VornEngine::RatePoint> points(entries.size());
    std::ranges::transform(entries, points.begin(), &Entry::point);
    return MatchingSamples(std::move(points));
}

std::vector<HistoryIndex::Entry> HistoryIndex::sameResetEntries(const Resets& resets, std::optional<Instant> resetsAt) {
    if (!resetsAt) {
        const auto unknown = resets.find(std::nullopt);
        return unknown != resets.end() ? unknown->second : std::vector<Entry>();
    }
    std::vector<Entry> entries;
    const auto end = resets.upper_bound(*resetsAt + kSameInstanceTolerance);
    for (auto at = resets.lower_bound(*resetsAt - kSameInstanceTolerance); at != end; ++at) {
        if (sameReset(at->first, resetsAt)) {
            entries.insert(entries.end(), at->second.begin(), at->second.end());
        }
    }
    return entries;
}

}  // namespace vorn
