#include "ui/format/head.hpp"

#include "ui/format/format.hpp"

namespace vorn::Format {

std::optional<Head> head(const std::optional<WindowAssessment>& urgent, const std::optional<VornSteer>& steer,
                         Instant now) {
    const bool isLimited = urgent && urgent->status == VornStatus::limited;
    if (const auto shown = isLimited ? urgent->steer() : steer) {
        return Head{.headline = steerHeadline(*shown), .reason = steerReason(*shown), .steer = shown};
    }
    if (!urgent) {
        return std::nullopt;
    }
    return Head{.headline = verdict(*urgent, now), .reason = {}, .steer = {}};
}

}  // namespace vorn::Format
