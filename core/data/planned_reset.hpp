#pragma once

#include <cstdint>
#include <string>

#include "core/data/window_kind.hpp"

namespace vorn {

/// A date at which the user expects limits to start afresh ahead of schedule.
struct PlannedReset {
    enum class Scope : std::uint8_t { all, session, week };

    std::string id;  ///< A UUID in its hyphenated upper-case form.
    Instant date;
    Scope scope = Scope::all;
    std::string note;  ///< Free text, may be empty.

    [[nodiscard]] bool covers(const WindowKind& kind) const;
    bool operator==(const PlannedReset&) const = default;
};

}  // namespace vorn
