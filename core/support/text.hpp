#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-8 text without ICU, for programs that have to stay small. What needs character properties is in unicode/.
namespace vorn {

/// `bytes` with every invalid UTF-8 sequence replaced by U+FFFD.
std::string repairUtf8(std::string_view bytes);

/// At most the first `count` code points of valid UTF-8.
std::string_view firstCodePoints(std::string_view text, std::size_t count);

/// ASCII letters in lower or upper case; everything else unchanged.
std::string asciiLower(std::string_view text);
std::string asciiUpper(std::string_view text);

}  // namespace vorn
