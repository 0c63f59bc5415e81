#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "core/data/planned_reset.hpp"
#include "core/data/usage_window.hpp"

namespace vorn {

/// The early resets that a user expects or holds, which the sources say nothing about.
struct ResetPlan {
    std::vector<PlannedReset> planned;
    std::int64_t banked = 0;  ///< Resets the user has been given and can redeem later.

    /// The earliest planned reset that cuts this window short: it covers the window and lies after `now` and before the
    /// window's own reset. Empty when there is none, and for a window whose reset is unknown.
    [[nodiscard]] std::optional<Instant> horizon(const UsageWindow& window, Instant now) const;

    /// Without the entries whose date passed a day ago or longer, the rest in the order of their dates.
    [[nodiscard]] ResetPlan pruned(Instant now) const;

    bool operator==(const ResetPlan&) const = default;
};

nlohmann::json encode(const ResetPlan& plan, DateCoding dates);
/// Throws DecodingError; one bad entry fails the whole plan.
ResetPlan decodeResetPlan(const nlohmann::json& value, DateCoding dates);

}  // namespace vorn
