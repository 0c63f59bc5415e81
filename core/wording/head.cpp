#include "core/wording/head.hpp"

#include "core/wording/format.hpp"

namespace vorn::Format {

std::optional<Head> head(const Answer& answer) {
    const WindowAssessment* const assessment = answer.headAssessment();
    if (assessment == nullptr) {
        return std::nullopt;
    }
    if (const auto& steer = answer.head->steer) {
        return Head{.headline = steerHeadline(*steer), .reason = steerReason(*steer), .steer = steer};
    }
    return Head{.headline = verdict(*assessment, answer.now), .reason = {}, .steer = {}};
}

}  // namespace vorn::Format
