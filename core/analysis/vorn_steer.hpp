#pragma once

#include "core/analysis/burn_rate.hpp"

namespace vorn {

/// One instruction out of all windows: which is tightest, and by how much the pace may change.
struct VornSteer {
    enum class Direction : std::uint8_t { stop = 0, easeOff = 1, onPace = 2, speedUp = 3 };

    static constexpr double easeOffFactor = 1.0;   ///< Below it the pace is too fast.
    static constexpr double speedUpFactor = 1.25;  ///< From it on there is room worth mentioning.

    WindowKind kind;  ///< The window steered by.
    /// Sustainable rate over current rate; +infinity when the current one is negligible, 0 at the limit.
    double factor = 0;
    RateBasis basis = RateBasis::none;  ///< What the current rate was formed from.

    [[nodiscard]] Direction direction() const;
    [[nodiscard]] double tilt() const;          ///< -1 (stop) to 1 (four times the pace or more), logarithmic.
    [[nodiscard]] double angleDegrees() const;  ///< Of the arrow, positive up: 0, or 20 to 60 either way.

    bool operator==(const VornSteer&) const = default;
};

}  // namespace vorn
