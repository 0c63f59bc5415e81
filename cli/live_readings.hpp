#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "cli/status_report.hpp"
#include "core/support/process.hpp"

namespace vorn::cli {

/// Whether a run asks the client.
enum class Probing : std::uint8_t {
    whenStale,  ///< when the newest reading is old and a failed client has had its rest
    always,
    never,
};

struct LiveRequest {
    std::optional<std::string> claudePath;  ///< The executable to use instead of looking for one.
    Probing probing = Probing::whenStale;
    Seconds staleAfter{60};      ///< Age of the newest reading from which the client is asked.
    bool wholeWeek = false;      ///< Read a week of local activity, not just what the session's rate needs.
    std::optional<Instant> now;  ///< Instead of the clock; nothing is then written.
};

/// Current readings from the history and, where asked for, from the client; what was read is recorded. Whatever fails
/// is in the result. Throws Cancelled.
Readings readLive(const LiveRequest& request, const Cancellation& cancellation);

}  // namespace vorn::cli
