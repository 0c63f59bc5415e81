#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/data/window_kind.hpp"

/// What a limit is called, whichever source names it.
namespace vorn {

/// The week of a model under the name that its card shows: the source's without a trailing " only" ("Sonnet only" is
/// Sonnet's).
WindowKind modelWeek(std::string_view sourceName);

/// What a member of the client's `rate_limits` is about: "five_hour" the session, "seven_day" the week, any other
/// "seven_day_…" the week of a model. Empty for anything else.
std::optional<WindowKind> windowKindOfMember(std::string_view member);

/// A member's name for people: "spend_limit" is "Spend limit".
std::string titleOfMember(std::string_view member);

}  // namespace vorn
