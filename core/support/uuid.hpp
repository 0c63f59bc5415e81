#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorn {

/// A fresh random UUID (version 4) in its hyphenated upper-case form.
std::string randomUuid();

/// The hyphenated upper-case form of a UUID given in hyphenated form, in either case; empty for anything else.
std::optional<std::string> canonicalUuid(std::string_view text);

}  // namespace vorn
