#pragma once

#include <compare>
#include <optional>

#include "core/data/window_kind.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// A turn that the service refused since a limit was reached: at that moment its window was used up.
struct RefusedTurn {
    Instant at;
    WindowKind kind;                    ///< Whose limit was reached.
    std::optional<Instant> resetsAt{};  ///< When that window ends; absent when the client did not say.
    auto operator<=>(const RefusedTurn&) const = default;  // NOLINT(modernize-use-nullptr): sees one in the default
};

}  // namespace vorn
