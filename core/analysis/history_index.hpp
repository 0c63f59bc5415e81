#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/analysis/matching_samples.hpp"
#include "core/data/history_sample.hpp"

namespace vorn {

/// The history by window and reset time, so that looking up one window's readings costs only as much as there are of
/// them: past instances are never looked at again. Keep one where analyses repeat.
class HistoryIndex {
public:
    HistoryIndex() = default;
    explicit HistoryIndex(std::span<const HistorySample> history) { update(history); }

    /// Takes in the whole history as it is now. Costs only as much as was appended since the last call; a history that
    /// lost samples (pruned, another file) is indexed anew.
    void update(std::span<const HistorySample> history);

    /// The readings for which `HistorySample::sameWindow` holds, or would if each limit had one name, in whatever order
    /// they were recorded.
    [[nodiscard]] MatchingSamples matching(const UsageWindow& window) const;

    /// How many samples are known.
    [[nodiscard]] std::size_t count() const { return m_count; }

private:
    struct Entry {
        std::size_t position;  ///< In the history: decides between equal times.
        VornEngine::RatePoint point;
    };
    /// By reset time exactly as recorded; one instance has several when its sources round differently.
    using Resets = std::map<std::optional<Instant>, std::vector<Entry>>;

    [[nodiscard]] bool continues(std::span<const HistorySample> history) const;
    void add(const HistorySample& sample);

    std::map<std::string, Resets> m_kinds;  ///< By `limitKey`.
    std::optional<HistorySample> m_first;
    std::optional<HistorySample> m_last;
    std::size_t m_count = 0;
};

}  // namespace vorn
