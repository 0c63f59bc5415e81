#include "core/data/history/recorded_readings.hpp"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace vorn {

void RecordedReadings::reserve(std::size_t count) {
    m_samples.reserve(count);
    m_sources.reserve(count);
}

void RecordedReadings::add(HistorySample sample, DataSource source) {
    m_samples.push_back(std::move(sample));
    m_sources.push_back(source);
}

void RecordedReadings::add(const RecordedReadings& more) {
    m_samples.insert(m_samples.end(), more.m_samples.begin(), more.m_samples.end());
    m_sources.insert(m_sources.end(), more.m_sources.begin(), more.m_sources.end());
}

RecordedReadings RecordedReadings::from(std::size_t first) const {
    const auto skipped = static_cast<std::ptrdiff_t>(first);
    RecordedReadings rest;
    rest.m_samples.assign(m_samples.begin() + skipped, m_samples.end());
    rest.m_sources.assign(m_sources.begin() + skipped, m_sources.end());
    return rest;
}

void RecordedReadings::eraseFirst(std::size_t count) {
    const auto erased = static_cast<std::ptrdiff_t>(count);
    m_samples.erase(m_samples.begin(), m_samples.begin() + erased);
    m_sources.erase(m_sources.begin(), m_sources.begin() + erased);
}

void RecordedReadings::eraseBefore(Instant cutoff) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < size(); ++i) {
        if (m_samples[i].observedAt >= cutoff) {
            std::swap(m_samples[kept], m_samples[i]);
            m_sources[kept++] = m_sources[i];
        }
    }
    m_samples.resize(kept);
    m_sources.resize(kept);
}

void RecordedReadings::sortByTime() {
    if (std::ranges::is_sorted(m_samples, {}, &HistorySample::observedAt)) {
        return;
    }
    std::vector<std::size_t> order(size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return m_samples[i].observedAt; });
    RecordedReadings sorted;
    sorted.reserve(size());
    for (const std::size_t i : order) {
        sorted.add(std::move(m_samples[i]), m_sources[i]);
    }
    *this = std::move(sorted);
}

void RecordedReadings::shrinkToFit() {
    m_samples.shrink_to_fit();
    m_sources.shrink_to_fit();
}

}  // namespace vorn
