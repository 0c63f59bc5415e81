#pragma once

#include <chrono>
#include <optional>

#include "core/support/file.hpp"
#include "core/support/process/process.hpp"

namespace vorn::cli {

/// For another process that is asking the client: as long as that may take, and some.
inline constexpr std::chrono::seconds kTurnPatience{35};

/// Keeps others from asking the client while it lives, and waits while another does. Empty, and no reason not to ask,
/// where there is no keeping them or the other one takes longer than `patience`. Throws Cancelled.
std::optional<FileLock> takeProbingTurn(std::chrono::seconds patience, const Cancellation& cancellation);

}  // namespace vorn::cli
