#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "core/data/window_kind.hpp"
#include "core/support/date_coding.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// A date at which the user expects limits to be reset ahead of schedule.
struct PlannedReset {
    enum class Scope : std::uint8_t {
        all,      ///< every limit
        session,  ///< the session alone
        week,     ///< the week over all models and the weeks of single models
    };
    static constexpr std::array allScopes{Scope::all, Scope::session, Scope::week};

    std::string id;  ///< A UUID in its hyphenated upper-case form, see `randomUuid`.
    Instant date;
    Scope scope = Scope::all;
    std::string note;  ///< Free text, may be empty.

    [[nodiscard]] bool covers(const WindowKind& kind) const;
    bool operator==(const PlannedReset&) const = default;
};

/// As files and command lines spell it: "all", "session", "week".
const char* rawValue(PlannedReset::Scope scope);
/// As people read it: "All limits", "Session (5h)", "Weekly limits".
const char* label(PlannedReset::Scope scope);

nlohmann::json encode(const PlannedReset& reset, DateCoding dates);
/// Throws DecodingError.
PlannedReset decodePlannedReset(const nlohmann::json& value, DateCoding dates);

}  // namespace vorn
