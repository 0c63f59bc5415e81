#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "cli/status_report.hpp"
#include "core/data/probe_record.hpp"
#include "core/sources/local_activity_scanner.hpp"
#include "core/support/process.hpp"

namespace vorn::cli {

/// Whether a run asks the client.
enum class Probing : std::uint8_t {
    whenStale,  ///< when the newest reading is old and a failed client has had its rest
    always,
    never,
};

struct LiveRequest {
    std::optional<std::string> claudePath;  ///< The executable to use whatever was chosen in the application.
    Probing probing = Probing::whenStale;
    /// Age of the newest reading from which the client is asked; empty: as often as the application asks it.
    std::optional<Seconds> staleAfter = Seconds{60};
    bool wholeWeek = false;      ///< Read a week of local activity, not just what the session's rate needs.
    std::optional<Instant> now;  ///< Instead of the clock; nothing is then written.
};

/// What a process that reads again and again keeps in between.
struct LiveMemory {
    std::optional<ProbeRecord> unsaved;             ///< Of the last probe, where it was not written.
    std::unique_ptr<LocalActivityScanner> scanner;  ///< Knows what it has read already.
};

/// Current readings from the history and, where asked for, from the client; what was read is recorded. Of programs that
/// would ask at the same time one does, and the others wait for what it records. Whatever fails is in the result. What
/// was chosen in the application holds where the request leaves it open. The same requests go with the same memory.
/// Throws Cancelled.
Readings readLive(const LiveRequest& request, LiveMemory& memory, const Cancellation& cancellation);

}  // namespace vorn::cli
