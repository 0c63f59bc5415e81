#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/data/client_answer.hpp"

namespace vorn {

/// The answer that the client keeps, and may give again for up to an hour without saying so.
struct CachedUsage {
    Instant fetchedAt;                   ///< When the service gave it.
    std::string account;                 ///< A hash of whose it is; empty where that is not known.
    std::vector<UsageWindow> windows{};  ///< Observed at `fetchedAt`.

    /// Whether `answer` says what was kept: the same shares, to the whole percent where it has no other, and the same
    /// reset times to the minute.
    [[nodiscard]] bool isIn(const ClientAnswer& answer) const;
};

/// The file in which the client that Vorn runs keeps its state: in `CLAUDE_CONFIG_DIR`, else in the home.
std::filesystem::path clientStateFile();

/// Of everything in the file only the kept answer is decoded. Empty where there is none: the file is missing, larger
/// than 16 MB or not JSON, or the client keeps none.
std::optional<CachedUsage> readCachedUsage(const std::filesystem::path& stateFile);

/// Gives the answer the time at which its figures were true, which is never later than when it came.
void dateAnswer(ClientAnswer& answer, const CachedUsage& cached);

}  // namespace vorn
