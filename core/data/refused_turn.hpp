#pragma once

#include <optional>
#include <span>
#include <vector>

#include "core/data/outcome.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// The service refused a turn because a limit was reached: the exact moment at which that was so.
struct RefusedTurn {
    WindowKind kind;
    Instant at;
    std::optional<Instant> resetsAt{};  ///< When there is room again; absent when the service did not say.

    [[nodiscard]] Instant end() const { return resetsAt.value_or(at + kind.length()); }

    bool operator==(const RefusedTurn&) const = default;
};

/// Each as a limit that was reached.
std::vector<Outcome> outcomesOf(std::span<const RefusedTurn> refusals);

}  // namespace vorn
