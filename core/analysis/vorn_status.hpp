#pragma once

#include <cstdint>

namespace vorn {

/// How a window stands; a higher value is worse.
enum class VornStatus : std::uint8_t { comfortable = 0, watch = 1, atRisk = 2, limited = 3 };

/// "Comfortable", "Watch", "At risk", "Limited".
const char* label(VornStatus status);

}  // namespace vorn
