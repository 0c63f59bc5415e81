#pragma once

#include <optional>
#include <string>

#include "core/analysis/answer.hpp"

namespace vorn::Format {

/// What stands over everything when one sentence has to speak for all windows.
struct Head {
    std::string headline;
    std::string reason;              ///< Which window it is about; empty when `headline` is a verdict.
    std::optional<VornSteer> steer;  ///< What `headline` says, for an arrow beside it; absent for a verdict.
    bool operator==(const Head&) const = default;
};

/// `Answer::head` in words.
std::optional<Head> head(const Answer& answer);

}  // namespace vorn::Format
