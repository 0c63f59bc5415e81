#include "core/support/unicode/icu_zone.hpp"

namespace vorn {

std::unique_ptr<icu::TimeZone> makeIcuZone(std::string_view zoneId) {
    const icu::StringPiece piece(zoneId.data(), static_cast<std::int32_t>(zoneId.size()));
    // ICU answers an unknown identifier with a zone "Etc/Unknown" that equals UTC, never with null.
    return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(piece)));
}

}  // namespace vorn
