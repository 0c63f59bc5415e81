#pragma once

#include <chrono>
#include <optional>

#include "core/support/file.hpp"
#include "core/support/process/process.hpp"

namespace vorn::cli {

/// How long to wait for another process that is asking the client: longer than that may take.
inline constexpr std::chrono::seconds kTurnPatience{35};

/// The turn to ask the client: nobody else asks while it lives. Waits while another process has it. Empty where there
/// is no lock to be had or the other process takes longer than `patience`; the caller may then ask all the same. Throws
/// Cancelled.
std::optional<FileLock> takeProbingTurn(std::chrono::seconds patience, const Cancellation& cancellation);

}  // namespace vorn::cli
