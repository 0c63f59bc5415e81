#pragma once

#include <optional>
#include <span>

#include "core/analysis/window_assessment.hpp"

namespace vorn::VornEngine {

/// The instruction of the tightest window that is not limited; empty when none has both a current and a sustainable
/// rate. `previous`: the kind steered by last time, which is kept unless another is tighter by more than
/// `switchMargin` (a share, e.g. 0.1), so that two similar windows do not alternate.
std::optional<VornSteer> steer(std::span<const WindowAssessment> assessments, const std::optional<WindowKind>& previous,
                               double switchMargin);

}  // namespace vorn::VornEngine
