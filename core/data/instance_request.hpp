#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/data/planned_reset.hpp"

namespace vorn {

/// What a later start of Vorn, or the terminal tool, asks of the one that is running.
struct InstanceRequest {
    enum class Kind : std::uint8_t {
        activate,  ///< by somebody who started it once more
        showPopover,
        showDashboard,
        redeemed,  ///< a banked reset was redeemed and entered into the plan's file
    };

    Kind kind = Kind::activate;
    PlannedReset::Scope scope = PlannedReset::Scope::all;  ///< Which limits the redeemed reset covers.
    bool operator==(const InstanceRequest&) const = default;
};

/// "activate", "show-popover", "show-dashboard", "redeemed".
const char* rawValue(InstanceRequest::Kind kind);

/// One line of JSON without its end: {"request":"redeemed","scope":"week"}.
std::string encode(const InstanceRequest& request);
/// Throws DecodingError with a text for people: for what is no request, and for one of another version.
InstanceRequest decodeInstanceRequest(std::string_view line);

}  // namespace vorn
