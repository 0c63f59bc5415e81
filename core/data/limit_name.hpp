#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/data/window_kind.hpp"

/// What Claude Code calls its limits, and what Vorn calls them. Every source goes through here, so that one limit has
/// one name.
namespace vorn {

/// The week of the model that a source names "Sonnet only" or "Sonnet"; `sourceName` is not empty.
WindowKind modelWeek(std::string_view sourceName);

/// By the name of a member of `rate_limits`: "five_hour" is the session, "seven_day" the week, and every longer
/// "seven_day_…" the week of a model: "seven_day_oauth_apps" that of "Oauth apps". Empty for all others.
std::optional<WindowKind> windowOfMember(std::string_view member);

/// For people: "spend_limit" is "Spend limit".
std::string limitName(std::string_view member);

/// Whether both are of the same limit: names of models are compared without case.
bool isSameLimit(const WindowKind& one, const WindowKind& other);

}  // namespace vorn
