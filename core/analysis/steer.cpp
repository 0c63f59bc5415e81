#include "core/analysis/steer.hpp"

#include <algorithm>
#include <vector>

namespace vorn::VornEngine {
namespace {

std::vector<VornSteer> candidates(std::span<const WindowAssessment> assessments) {
    std::vector<VornSteer> found;
    for (const WindowAssessment& assessment : assessments) {
        if (assessment.window.usedPercent < kLimitPercent) {
            if (auto steer = assessment.steer()) {
                found.push_back(*std::move(steer));
            }
        }
    }
    return found;
}

bool isTighter(const VornSteer& one, const VornSteer& other) {
    return one.factor != other.factor ? one.factor < other.factor : one.kind < other.kind;
}

}  // namespace

std::optional<VornSteer> steer(std::span<const WindowAssessment> assessments, const std::optional<WindowKind>& previous,
                               double switchMargin) {
    const std::vector<VornSteer> found = candidates(assessments);
    if (found.empty()) {
        return std::nullopt;
    }
    const VornSteer& tightest = *std::ranges::min_element(found, isTighter);
    if (!previous) {
        return tightest;
    }
    const auto kept = std::ranges::find(found, *previous, &VornSteer::kind);
    if (kept == found.end() || tightest.factor < (1 - switchMargin) * kept->factor) {
        return tightest;
    }
    return *kept;
}

}  // namespace vorn::VornEngine
