#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vorn {

/// How many terminal cells a line of UTF-8 takes: wide East Asian characters and emoji take two, combining and control
/// characters none.
std::size_t displayWidth(std::string_view text);

/// `text` shortened to at most `cells` by an "…" at its end, whole when it fits. As `printable` as
/// everything here.
std::string elide(std::string_view text, std::size_t cells);

/// `text` elided or filled with blanks to exactly `cells`.
std::string fitted(std::string_view text, std::size_t cells);

/// `text` in lines of at most `cells` (at least 1), broken between the parts that a " · " separates, else between
/// words, and only within a word that is longer than a line. Without control characters; at least one line, the empty
/// one.
std::vector<std::string> wrapped(std::string_view text, std::size_t cells);

/// `text` in one line, without control characters and without those that turn the direction of writing: what comes from
/// files or other programs must not steer the terminal. Tabs and line breaks become blanks.
std::string printable(std::string_view text);

}  // namespace vorn
