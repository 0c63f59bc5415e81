#include "core/analysis/vorn_steer.hpp"

#include <algorithm>
#include <cmath>

namespace vorn {
namespace {

/// Degrees of the flattest arrow that is not level, so that it never passes for a level one.
constexpr double kLeastAngle = 20;
/// Degrees from the flattest arrow to the steepest.
constexpr double kAngleRange = 40;
/// The tilt at `VornSteer::speedUpFactor`, log2(1.25) / 2: there the upward arrow starts at its flattest.
constexpr double kSpeedUpTilt = 0.16096404744368117;
/// 1 − `kSpeedUpTilt`.
constexpr double kSpeedUpTiltRange = 0.8390359525563188;

/// How far along its range the arrow is at `share` (clamped to 0..1).
double arrowAngle(double share) {
    return kLeastAngle + kAngleRange * std::clamp(share, 0.0, 1.0);
}

}  // namespace

VornSteer::Direction VornSteer::direction() const {
    if (factor <= 0) {
        return Direction::stop;
    }
    if (factor < easeOffFactor) {
        return Direction::easeOff;
    }
    return factor >= speedUpFactor ? Direction::speedUp : Direction::onPace;
}

double VornSteer::tilt() const {
    if (!(factor > 0)) {  // not a number included
        return -1;
    }
    // Half the octaves: four times the pace, or a quarter of it, is full tilt. Infinity clamps to 1.
    return std::clamp(std::log2(factor) / 2, -1.0, 1.0);
}

double VornSteer::angleDegrees() const {
    if (!(factor > 0)) {
        return -arrowAngle(1);
    }
    if (factor < easeOffFactor) {
        return -arrowAngle(-tilt());
    }
    if (factor < speedUpFactor) {
        return 0;
    }
    return arrowAngle((tilt() - kSpeedUpTilt) / kSpeedUpTiltRange);
}

}  // namespace vorn
