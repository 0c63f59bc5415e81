#pragma once

#include <optional>
#include <span>

#include "core/analysis/window_assessment.hpp"

namespace vorn::VornEngine {

struct AssessmentInput {
    /// The window's recorded readings. Must outlive the call.
    const MatchingSamples& history;
    const ActivitySummary* activity = nullptr;  ///< Null when local activity is switched off.
    Instant now;
    /// From the reset plan; counts only between now and the window's own reset.
    std::optional<Instant> plannedResetAt;
    Thresholds thresholds{};
};

/// What the reading means at `now`: pace, projection, time to the limit and the verdict. A reading or reset time that
/// is not finite is assessed like a window without a reset time.
WindowAssessment assess(const UsageWindow& window, const AssessmentInput& input);

/// The assessment that matters most: the worst status, then the sooner limit, then the higher projection; of equals the
/// first. Empty only for no assessments.
std::optional<WindowAssessment> headline(std::span<const WindowAssessment> assessments);

}  // namespace vorn::VornEngine
