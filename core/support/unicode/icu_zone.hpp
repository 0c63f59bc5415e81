#pragma once

#include <memory>
#include <string_view>

#include <unicode/timezone.h>

#include "core/support/time.hpp"

/// Between Vorn's instants and zones and ICU's. For the files of this folder only.
namespace vorn {

/// A zone of our own for ICU to adopt; an unknown identifier is UTC.
std::unique_ptr<icu::TimeZone> makeIcuZone(std::string_view zoneId);

/// ICU counts milliseconds.
inline UDate toIcuDate(Instant instant) {
    return secondsSince1970(instant) * 1000.0;
}
inline Instant fromIcuDate(UDate date) {
    return instantSince1970(date / 1000.0);
}

}  // namespace vorn
