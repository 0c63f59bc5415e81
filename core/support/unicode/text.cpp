#include "core/support/unicode/text.hpp"

#include <utility>

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include "core/support/text.hpp"
#include "core/support/unicode/icu_conversion.hpp"

namespace vorn {
namespace {

/// False for anything but one whole character.
bool isBlank(std::string_view character) {
    const icu::UnicodeString text = toIcuText(character);
    return text.countChar32() == 1 && u_isblank(text.char32At(0)) != 0;
}

/// The last character of non-empty `text`.
std::string_view lastCharacter(std::string_view text) {
    std::size_t start = text.size() - 1;
    while (start > 0 && text.size() - start < U8_MAX_LENGTH &&
           (static_cast<unsigned char>(text[start]) & 0xC0U) == 0x80) {
        --start;
    }
    return text.substr(start);
}

/// Bytes of the newline character at the front of non-empty `text`; 0 when it begins with something else.
std::size_t newlineLength(std::string_view text) {
    constexpr std::string_view kNextLine = "\u0085";
    constexpr std::string_view kLineSeparator = "\u2028";
    constexpr std::string_view kParagraphSeparator = "\u2029";
    if (text.front() >= '\n' && text.front() <= '\r') {
        return 1;
    }
    for (const std::string_view newline : {kNextLine, kLineSeparator, kParagraphSeparator}) {
        if (text.starts_with(newline)) {
            return newline.size();
        }
    }
    return 0;
}

}  // namespace

std::string_view trimBlanks(std::string_view text) {
    while (!text.empty()) {
        const std::string_view first = firstCodePoints(text, 1);
        if (!isBlank(first)) {
            break;
        }
        text.remove_prefix(first.size());
    }
    while (!text.empty()) {
        const std::string_view last = lastCharacter(text);
        if (!isBlank(last)) {
            break;
        }
        text.remove_suffix(last.size());
    }
    return text;
}

std::string_view takeLine(std::string_view& rest) {
    for (std::size_t i = 0; i < rest.size(); ++i) {
        if (const std::size_t length = newlineLength(rest.substr(i)); length > 0) {
            const std::string_view line = rest.substr(0, i);
            rest.remove_prefix(i + length);
            return line;
        }
    }
    return std::exchange(rest, {});
}

std::string lowerCased(std::string_view text) {
    std::string lower;
    toIcuText(text).toLower(icu::Locale::getRoot()).toUTF8String(lower);
    return lower;
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    return toIcuText(text).foldCase().indexOf(toIcuText(part).foldCase()) >= 0;
}

bool startsWithNumeral(std::string_view text) {
    // Of no text this is U+FFFF, which is no numeral.
    const UChar32 first = toIcuText(firstCodePoints(text, 1)).char32At(0);
    return u_getIntPropertyValue(first, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

}  // namespace vorn
