#pragma once

#include <optional>
#include <span>
#include <vector>

#include "core/support/time.hpp"

namespace vorn {

namespace VornEngine {

/// How much of a window was used at a moment.
struct RatePoint {
    Instant time;
    double value = 0;  ///< used percent
    bool operator==(const RatePoint&) const = default;
};

/// False for a time or value that is infinite or not a number.
bool isFinite(const RatePoint& point);

}  // namespace VornEngine

/// The recorded readings of one window instance in order of time: what burn rates are formed from. Readings later than
/// now (the clock was set back) are among them. Immutable.
class MatchingSamples {
public:
    MatchingSamples() = default;
    /// Sorts by time, equal times keep their order; leaves out what is not finite.
    explicit MatchingSamples(std::vector<VornEngine::RatePoint> points);

    [[nodiscard]] std::span<const VornEngine::RatePoint> points() const { return m_points; }
    /// The readings at or after `start`.
    [[nodiscard]] std::span<const VornEngine::RatePoint> since(Instant start) const;

    bool operator==(const MatchingSamples&) const = default;

private:
    std::vector<VornEngine::RatePoint> m_points;
};

}  // namespace vorn
