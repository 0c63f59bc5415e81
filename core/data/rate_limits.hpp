#pragma once

#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "core/data/other_limits.hpp"
#include "core/data/usage_window.hpp"

namespace vorn {

/// Every limit that one source told of at one moment.
struct RateLimits {
    std::vector<UsageWindow> windows{};
    OtherLimits others{};
    bool operator==(const RateLimits&) const = default;
};

/// The client's `rate_limits`, a member or a list entry for each limit, shares as `used_percentage`, `utilization` or
/// `percent`, times in seconds since 1970 or as ISO 8601. A limit of the list that a member or an earlier entry has,
/// and whatever has no share, is left out; so is what comes after the first hundred. Never throws.
RateLimits decodeRateLimits(const nlohmann::json& rateLimits, Instant observedAt, DataSource source);

}  // namespace vorn
