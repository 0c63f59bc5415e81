#include "core/analysis/history_index.hpp"

#include <algorithm>
#include <cmath>

#include "core/data/limit_names.hpp"

namespace vorn {
namespace {

/// One limit, whatever its lines call it. Only a model's week has several names.
std::string indexKey(const std::string& kindKey) {
    return kindKey.starts_with("week:") ? limitKey(kindKey) : kindKey;
}

}  // namespace

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
    Resets& resets = m_kinds[indexKey(sample.kindKey)];
    // Nearly every sample repeats the newest reset time: spare it the search.
    const bool isNewest = !resets.empty() && resets.rbegin()->first == sample.resetsAt;
    std::vector<Entry>& entries = isNewest ? resets.rbegin()->second : resets[sample.resetsAt];
    entries.push_back({position, {sample.observedAt, sample.usedPercent}});
}

MatchingSamples HistoryIndex::matching(const UsageWindow& window) const {
    const auto kind = m_kinds.find(indexKey(window.kind.key()));
    if (kind == m_kinds.end()) {
        return {};
    }
    const auto shifted = [&](Seconds by) {
        return window.resetsAt ? std::optional(*window.resetsAt + by) : std::nullopt;
    };
    std::vector<Entry> entries;
    const auto end = kind->second.upper_bound(shifted(kSameInstanceTolerance));
    for (auto at = kind->second.lower_bound(shifted(-kSameInstanceTolerance)); at != end; ++at) {
        if (sameReset(at->first, window.resetsAt)) {
            entries.insert(entries.end(), at->second.begin(), at->second.end());
        }
    }
    if (!std::ranges::is_sorted(entries, {}, &Entry::position)) {
        std::ranges::sort(entries, {}, &Entry::position);
    }
    std::vector<VornEngine::RatePoint> points(entries.size());
    std::ranges::transform(entries, points.begin(), &Entry::point);
    return MatchingSamples(std::move(points));
}

}  // namespace vorn
