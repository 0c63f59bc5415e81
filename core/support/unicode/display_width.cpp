#include "core/support/unicode/display_width.hpp"

#include <utility>

#include <unicode/uchar.h>

#include "core/support/text.hpp"

namespace vorn {
namespace {

bool isBreak(UChar32 c) {
    return c == '\t' || c == '\n' || c == 0x2028 || c == 0x2029;
}

bool steersTerminal(UChar32 c) {
    return u_charType(c) == U_CONTROL_CHAR || u_hasBinaryProperty(c, UCHAR_BIDI_CONTROL) != 0;
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

/// The longest beginning of `text`, valid UTF-8, that takes at most `cells`.
std::string_view beginning(std::string_view text, std::size_t cells) {
    std::size_t used = 0;
    std::size_t length = 0;
    eachCharacter(text, [&](UChar32 c, std::string_view bytes) {
        used += cellsOf(c);
        length += used <= cells ? bytes.size() : 0;
        return used <= cells;
    });
    return text.substr(0, length);
}

/// Calls `visit` for each piece of `text` between separators.
template <typename Visit>
void eachPiece(std::string_view text, std::string_view separator, Visit visit) {
    while (true) {
        const std::size_t end = text.find(separator);
        visit(text.substr(0, end));
        if (end == std::string_view::npos) {
            return;
        }
        text.remove_prefix(end + separator.size());
    }
}

/// Fills lines one after the other.
class LineFiller {
public:
    explicit LineFiller(std::size_t cells) : m_cells(cells) {}

    /// Whether the text went onto the current line, the separator before it where something stands there.
    bool fits(std::string_view separator, std::string_view text) {
        const std::string_view between = m_line.empty() ? std::string_view() : separator;
        const std::size_t taken = m_taken + displayWidth(between) + displayWidth(text);
        if (taken > m_cells) {
            return false;
        }
        m_line.append(between).append(text);
        m_taken = taken;
        return true;
    }
    void startLine() {
        if (!m_line.empty()) {
            m_lines.push_back(std::exchange(m_line, {}));
        }
        m_taken = 0;
    }
    void addWord(std::string_view word) {
        if (fits(" ", word)) {
            return;
        }
        startLine();
        for (auto part = beginning(word, m_cells); part.size() < word.size(); part = beginning(word, m_cells)) {
            const std::size_t taken = part.empty() ? firstCodePoints(word, 1).size() : part.size();
            m_lines.emplace_back(word.substr(0, taken));
            word.remove_prefix(taken);
        }
        fits("", word);
    }
    std::vector<std::string> take() {
        if (!m_line.empty() || m_lines.empty()) {
            m_lines.push_back(std::move(m_line));
        }
        return std::move(m_lines);
    }

private:
    std::size_t m_cells;
    std::vector<std::string> m_lines;
    std::string m_line;
    std::size_t m_taken = 0;  ///< Cells of `m_line`.
};

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
        if (isBreak(c)) {
            kept += ' ';
        } else if (!steersTerminal(c)) {
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
    return std::string(beginning(whole, cells - 1)) + "…";
}

std::string fitted(std::string_view text, std::size_t cells) {
    std::string shown = elide(text, cells);
    return shown + std::string(cells - displayWidth(shown), ' ');
}

std::vector<std::string> wrapped(std::string_view text, std::size_t cells) {
    constexpr std::string_view kSeparator = " · ";
    LineFiller lines(cells);
    eachPiece(printable(text), kSeparator, [&](std::string_view part) {
        if (!lines.fits(kSeparator, part)) {
            lines.startLine();
            eachPiece(part, " ", [&](std::string_view word) { lines.addWord(word); });
        }
    });
    return lines.take();
}

}  // namespace vorn
