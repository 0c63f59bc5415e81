#include "core/analysis/matching_samples.hpp"

#include <algorithm>
#include <cmath>

namespace vorn {

using VornEngine::RatePoint;

bool VornEngine::isFinite(const RatePoint& point) {
    return std::isfinite(secondsSince1970(point.time)) && std::isfinite(point.value);
}

MatchingSamples::MatchingSamples(std::vector<RatePoint> points) : m_points(std::move(points)) {
    std::erase_if(m_points, [](const RatePoint& point) { return !VornEngine::isFinite(point); });
    // A history is nearly always in order already, and looking is much cheaper than sorting.
    if (!std::ranges::is_sorted(m_points, {}, &RatePoint::time)) {
        std::ranges::stable_sort(m_points, {}, &RatePoint::time);
    }
}

std::span<const RatePoint> MatchingSamples::since(Instant start) const {
    return {std::ranges::lower_bound(m_points, start, {}, &RatePoint::time), m_points.end()};
}

}  // namespace vorn
