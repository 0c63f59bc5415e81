#pragma once

#include <cmath>
#include <optional>

namespace vorn {

/// `value`, or nothing when a computation overflowed or was undefined: what the analysis publishes is absent or finite.
inline std::optional<double> finiteOrAbsent(double value) {
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

}  // namespace vorn
