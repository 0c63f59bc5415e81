#pragma once

#include <string_view>

#include "core/support/time.hpp"

namespace vorn {

/// What a run of the relay leaves for other programs: the snapshot of the latest turn of all sessions, with the time at
/// which that was first seen, and the limits beside it. A run without a new turn leaves things as they are; an input
/// that is not Claude Code's, or reports no limits, changes nothing. Never throws: nothing that is wrong on our side
/// may show in the status line.
void leaveTurn(std::string_view statusLineInput, Instant now) noexcept;

}  // namespace vorn
