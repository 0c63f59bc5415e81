#pragma once

#include <string>
#include <string_view>

/// UTF-8 text by the properties of its characters. A character is a code point; an invalid sequence counts as U+FFFD.
namespace vorn {

/// `text` without blanks at its ends: tabs and every space of Unicode (U+00A0 and U+202F among them), no newlines.
std::string_view trimBlanks(std::string_view text);

/// Cuts the first line, without its newline character, off the front of `rest`. Newline characters are CR, LF, VT, FF,
/// U+0085, U+2028 and U+2029, each for itself: CR LF leaves an empty line between.
std::string_view takeLine(std::string_view& rest);

/// In lower case, whatever the user's locale.
std::string lowerCased(std::string_view text);

/// Whether `text` contains `part` when case does not matter, whatever the user's locale.
bool containsIgnoringCase(std::string_view text, std::string_view part);

/// Whether the first character stands for a number: digits of any script, fractions, Roman numerals.
bool startsWithNumeral(std::string_view text);

}  // namespace vorn
