#include "core/support/unicode/display_width.hpp"

#include <unicode/uchar.h>

#include "core/support/text.hpp"

namespace vorn {
namespace {

bool isControl(UChar32 c) {
    return u_charType(c) == U_CONTROL_CHAR || c == 0x2028 || c == 0x2029;
}

std::size_t cellsOf(UChar32 c) {
    switch (u_charType(c)) {
        case U_CONTROL_CHAR:
        case U_FORMAT_CHAR:
        case U_NON_SPACING_MARK:
        case U_ENCLOSING_MARK:
            return 0;
        default:
            break;
    }
    const auto width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

/// The code point of one character of valid UTF-8.
UChar32 decode(std::string_view character) {
    constexpr unsigned kContinuationBits = 6;
    const auto lead = static_cast<unsigned char>(character.front());
    if (character.size() == 1) {
        return lead;
    }
    // The more bytes, the fewer bits of the lead byte carry the value.
    unsigned value = lead & (0xFFU >> (character.size() + 1));
    for (const char byte : character.substr(1)) {
        value = (value << kContinuationBits) | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    return static_cast<UChar32>(value);
}

/// Calls `visit(code point, its bytes)` for each character of valid UTF-8 until it returns false.
template <typename Visit>
void eachCharacter(std::string_view text, Visit visit) {
    while (!text.empty()) {
        const std::string_view bytes = firstCodePoints(text, 1);
        if (!visit(decode(bytes), bytes)) {
            return;
        }
        text.remove_prefix(bytes.size());
    }
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
    std::size_t cells = 0;
    eachCharacter(repairUtf8(text), [&](UChar32 c, std::string_view) {
        cells += cellsOf(c);
        return true;
    });
    return cells;
}

std::string printable(std::string_view text) {
    const std::string repaired = repairUtf8(text);
    std::string kept;
    eachCharacter(repaired, [&](UChar32 c, std::string_view bytes) {
        if (!isControl(c)) {
            kept += bytes;
        }
        return true;
    });
    return kept;
}

std::string elide(std::string_view text, std::size_t cells) {
    std::string whole = printable(text);
    if (displayWidth(whole) <= cells) {
        return whole;
    }
    if (cells == 0) {
        return {};
    }
    std::string kept;
    std::size_t used = 0;
    eachCharacter(whole, [&](UChar32 c, std::string_view bytes) {
        if (used + cellsOf(c) > cells - 1) {
            return false;
        }
        used += cellsOf(c);
        kept += bytes;
        return true;
    });
    return kept + "…";
}

std::string fitted(std::string_view text, std::size_t cells) {
    std::string shown = elide(text, cells);
    return shown + std::string(cells - displayWidth(shown), ' ');
}

}  // namespace vorn
