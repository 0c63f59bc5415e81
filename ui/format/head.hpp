#pragma once

#include <optional>
#include <string>

#include "core/analysis/window_assessment.hpp"

namespace vorn::Format {

/// What stands over everything when one sentence has to speak for all windows.
struct Head {
    std::string headline;
    std::string reason;              ///< Which window it is about; empty when `headline` is a verdict.
    std::optional<VornSteer> steer;  ///< What `headline` says, for an arrow beside it; absent for a verdict.
    bool operator==(const Head&) const = default;
};

/// The head of every surface. While the most urgent window is limited it speaks of that one, so that a person who
/// cannot work never reads that there is room; else of `steer`, else it is the verdict of the most urgent window.
/// `urgent`: as `VornEngine::headline` gives it; `steer`: as `VornEngine::steer` does. Empty when neither is known.
std::optional<Head> head(const std::optional<WindowAssessment>& urgent, const std::optional<VornSteer>& steer,
                         Instant now);

}  // namespace vorn::Format
