#pragma once

#include <string_view>

#include <unicode/unistr.h>
#include <unicode/utypes.h>

#include "core/support/time.hpp"

/// Between Vorn's texts and instants and ICU's. For the files of this folder only.
namespace vorn {

/// Invalid sequences become U+FFFD. Nothing we read is longer than 256 MiB; of such a text the rest is left out, since
/// ICU counts in 32 bits.
icu::UnicodeString toIcuText(std::string_view utf8);

/// ICU counts milliseconds.
inline UDate toIcuDate(Instant instant) {
    return secondsSince1970(instant) * 1000.0;
}
inline Instant fromIcuDate(UDate date) {
    return instantSince1970(date / 1000.0);
}

}  // namespace vorn
