#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/data/window_kind.hpp"

/// What the sources call the limits. One week of one model has several names: "Sonnet only" in the client's text,
/// `seven_day_sonnet` in its structured answer.
namespace vorn {

/// The week of a model by the name that a source gives: without a trailing " only".
WindowKind modelWeek(std::string_view sourceName);

/// The kind under the name that its card shows.
WindowKind canonical(WindowKind kind);

/// The window that a member of the service's limits is about: `five_hour`, `seven_day`, and every other `seven_day_…`,
/// the week of a model ("oauth_apps" becomes "Oauth apps"). Empty for any other member.
std::optional<WindowKind> windowKindOfMember(std::string_view member);

/// A member's name for people: "spend_limit" becomes "Spend limit".
std::string titleOfMember(std::string_view member);

/// The same for all names of one limit: `WindowKind::key()` of the kind without a trailing " only", in small letters.
std::string limitKey(std::string_view kindKey);

/// Whether both name one limit: as `limitKey`.
bool isSameLimit(const WindowKind& one, const WindowKind& other);

}  // namespace vorn
