#pragma once

#include <optional>
#include <string_view>

#include "core/support/time.hpp"

namespace vorn::cli {

/// "90m", "24h", "7d", "30s": a positive whole number and its unit, at most 366 days. Empty for anything else.
std::optional<Seconds> parseSpan(std::string_view text);

}  // namespace vorn::cli
