#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vorn {

/// How many terminal cells a line of UTF-8 takes: wide East Asian characters and emoji take two, combining and control
/// characters none.
std::size_t displayWidth(std::string_view text);

/// `text` shortened to at most `cells` by an "…" at its end, whole when it fits. Control characters (a terminal would
/// obey them) are dropped.
std::string elide(std::string_view text, std::size_t cells);

/// `text` elided or filled with blanks to exactly `cells`.
std::string fitted(std::string_view text, std::size_t cells);

/// `text` without control characters: what comes from files or other programs must not steer the terminal.
std::string printable(std::string_view text);

}  // namespace vorn
