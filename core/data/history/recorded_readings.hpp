#pragma once

#include <span>
#include <vector>

#include "core/data/history_sample.hpp"

namespace vorn {

/// Samples and, for each, where its reading came from. The sources lie beside the samples, where each takes one byte:
/// inside a sample it would take eight.
class RecordedReadings {
public:
    void reserve(std::size_t count);
    void add(HistorySample sample, DataSource source);
    void add(const RecordedReadings& more);
    /// The samples from index `first` on, with their sources.
    [[nodiscard]] RecordedReadings from(std::size_t first) const;
    void eraseFirst(std::size_t count);
    /// Erases what was observed before `cutoff`.
    void eraseBefore(Instant cutoff);
    /// Sorts by time of observation; readings of the same time keep their order.
    void sortByTime();
    void shrinkToFit();

    [[nodiscard]] const std::vector<HistorySample>& samples() const { return m_samples; }
    /// Where each of `samples` came from, in their order.
    [[nodiscard]] const std::vector<DataSource>& sources() const { return m_sources; }
    [[nodiscard]] std::size_t size() const { return m_samples.size(); }
    [[nodiscard]] bool isEmpty() const { return m_samples.empty(); }

    bool operator==(const RecordedReadings&) const = default;

private:
    std::vector<HistorySample> m_samples;
    std::vector<DataSource> m_sources;
};

}  // namespace vorn
