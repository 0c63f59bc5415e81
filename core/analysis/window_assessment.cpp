#include "core/analysis/window_assessment.hpp"

#include <algorithm>
#include <limits>

namespace vorn {

std::optional<Instant> WindowAssessment::horizon() const {
    return plannedResetAt ? plannedResetAt : window.resetsAt;
}

std::optional<double> WindowAssessment::unusedAtReset() const {
    if (!projectedAtReset) {
        return std::nullopt;
    }
    return std::max(0.0, kLimitPercent - *projectedAtReset);
}

std::optional<double> WindowAssessment::paceDelta() const {
    if (!evenPacePercent) {
        return std::nullopt;
    }
    return window.usedPercent - *evenPacePercent;
}

std::optional<VornSteer> WindowAssessment::steer() const {
    if (window.usedPercent >= kLimitPercent) {
        return VornSteer{.kind = window.kind, .factor = 0, .basis = rateBasis};
    }
    if (!sustainableRatePerHour || !ratePerHour) {
        return std::nullopt;
    }
    const double factor = *ratePerHour > kNegligibleRatePerHour ? *sustainableRatePerHour / *ratePerHour
                                                                : std::numeric_limits<double>::infinity();
    return VornSteer{.kind = window.kind, .factor = factor, .basis = rateBasis};
}

}  // namespace vorn
