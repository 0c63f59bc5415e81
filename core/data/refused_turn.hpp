#pragma once

#include <compare>
#include <optional>
#include <span>
#include <vector>

#include "core/data/outcome.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// A turn that the service refused since a limit was reached: at that moment its window was used up.
struct RefusedTurn {
    Instant at;
    WindowKind kind;                    ///< Whose limit was reached.
    std::optional<Instant> resetsAt{};  ///< When that window ends; absent when the client did not say.

    [[nodiscard]] Instant end() const { return resetsAt.value_or(at + kind.length()); }

    auto operator<=>(const RefusedTurn&) const = default;  // NOLINT(modernize-use-nullptr): sees one in the default
    bool operator==(const RefusedTurn&) const = default;
};

/// Each as a limit that was reached.
std::vector<Outcome> outcomesOf(std::span<const RefusedTurn> refusals);

}  // namespace vorn
