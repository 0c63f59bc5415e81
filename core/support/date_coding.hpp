#pragma once

#include <cstdint>

namespace vorn {

/// How the owner of a file writes instants.
enum class DateCoding : std::uint8_t {
    secondsSince1970,  ///< a number, fractions kept
    iso8601,           ///< "2026-11-22T20:45:00Z", whole seconds
};

}  // namespace vorn
