#include "core/sources/json_value.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "core/support/text.hpp"

namespace vorn {
namespace {

constexpr int kDeepest = 256;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The length of the JSON number at the front of `text`; 0 when there is none.
std::size_t numberLength(std::string_view text) {
    std::size_t i = 0;
    const auto at = [&](char wanted) {
        return i < text.size() && text[i] == wanted;
    };
    const auto digits = [&] {
        const std::size_t start = i;
        while (i < text.size() && isDigit(text[i])) {
            ++i;
        }
        return i > start;
    };
    i += at('-') ? 1U : 0U;
    if (at('0')) {
        ++i;
    } else if (!digits()) {
        return 0;
    }
    if (at('.')) {
        ++i;
        if (!digits()) {
            return 0;
        }
    }
    if (at('e') || at('E')) {
        ++i;
        i += at('-') || at('+') ? 1U : 0U;
        if (!digits()) {
            return 0;
        }
    }
    return i;
}

/// A number as sign, digits without zeros at either end, and the power of ten that the last digit counts.
struct Decimal {
    bool negative = false;
    std::string digits;
    std::int64_t power = 0;
    bool operator==(const Decimal&) const = default;
};

/// Empty where the exponent is beyond what anybody could mean.
std::optional<Decimal> decimalOf(std::string_view literal) {
    constexpr std::int64_t kLargestExponent = std::int64_t{1} << 60U;
    Decimal decimal;
    const std::size_t exponentMark = std::min(literal.find_first_of("eE"), literal.size());
    bool afterPoint = false;
    for (const char c : literal.substr(0, exponentMark)) {
        if (isDigit(c)) {
            decimal.digits += c;
            decimal.power -= afterPoint ? 1 : 0;
        } else if (c == '-') {
            decimal.negative = true;
        } else {
            afterPoint = true;
        }
    }
    decimal.digits.erase(0, decimal.digits.find_first_not_of('0'));
    if (decimal.digits.empty()) {
        return Decimal{};
    }
    if (exponentMark < literal.size()) {
        std::string_view text = literal.substr(exponentMark + 1);
        text.remove_prefix(text.front() == '+' ? 1 : 0);
        std::int64_t exponent = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
        if (error != std::errc{} || exponent > kLargestExponent || exponent < -kLargestExponent) {
            return std::nullopt;
        }
        decimal.power += exponent;
    }
    const std::size_t last = decimal.digits.find_last_not_of('0');
    decimal.power += static_cast<std::int64_t>(decimal.digits.size() - last - 1);
    decimal.digits.resize(last + 1);
    return decimal;
}

void appendUtf8(std::string& text, char32_t code) {
    const auto put = [&](char32_t byte) {
        text += static_cast<char>(static_cast<unsigned char>(byte));
    };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6U);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12U);
        put(0x80 | (code >> 6U & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18U);
        put(0x80 | (code >> 12U & 0x3F));
        put(0x80 | (code >> 6U & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

/// Reads one document. Not a general parser behind an adapter, because those read numbers into machine types, take the
/// last of two equal keys and stop at a zero byte: each would change somebody else's file silently.
class Parser {
public:
    explicit Parser(std::string_view text) : m_text(text) {}

    JSONValue document() {
        if (m_text.starts_with("\xEF\xBB\xBF")) {
            fail("a byte order mark is not allowed");
        }
        skipBlanks();
        JSONValue result = value(0);
        skipBlanks();
        if (m_at < m_text.size()) {
            fail("something follows the end of the document");
        }
        return result;
    }

private:
    [[noreturn]] void fail(const char* reason) const {
        const std::string_view before = m_text.substr(0, m_at);
        const auto line = std::ranges::count(before, '\n') + 1;
        const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is the start of the text
        throw JSONValue::ParseError(fmt::format("line {}, column {}: {}", line, m_at - lineStart + 1, reason));
    }

    [[nodiscard]] bool isAt(std::string_view wanted) const { return m_text.substr(m_at).starts_with(wanted); }

    bool skip(std::string_view wanted) {
        if (!isAt(wanted)) {
            return false;
        }
        m_at += wanted.size();
        return true;
    }

    void skipBlanks() {
        m_at = std::min(m_text.find_first_not_of(" \t\n\r", m_at), m_text.size());
        if (isAt("//") || isAt("/*")) {
            fail("a comment is not allowed");
        }
    }

    JSONValue value(int depth) {
        if (depth > kDeepest) {
            fail("nested too deeply");
        }
        if (m_at == m_text.size()) {
            fail("the document ends too early");
        }
        switch (m_text[m_at]) {
            case '{':
                return object(depth);
            case '[':
                return array(depth);
            case '"':
                return string();
            default:
                return scalar();
        }
    }

    JSONValue scalar() {
        if (skip("true")) {
            return true;
        }
        if (skip("false")) {
            return false;
        }
        if (skip("null")) {
            return nullptr;
        }
        const std::size_t length = numberLength(m_text.substr(m_at));
        if (length == 0) {
            fail("a value is expected");
        }
        JSONNumber number(std::string(m_text.substr(m_at, length)));
        m_at += length;
        return number;
    }

    /// Whether another element follows; the closing mark is passed.
    bool hasNext(const char* closing) {
        skipBlanks();
        if (skip(closing)) {
            return false;
        }
        if (!skip(",")) {
            fail(m_at == m_text.size() ? "the document ends too early" : "a comma is missing");
        }
        skipBlanks();
        if (isAt(closing)) {
            fail("a comma before the end is not allowed");
        }
        return true;
    }

    JSONValue array(int depth) {
        JSONValue::Array elements;
        ++m_at;
        skipBlanks();
        if (skip("]")) {
            return elements;
        }
        do {
            elements.push_back(value(depth + 1));
        } while (hasNext("]"));
        return elements;
    }

    JSONValue object(int depth) {
        JSONValue::Object members;
        ++m_at;
        skipBlanks();
        if (skip("}")) {
            return members;
        }
        do {
            if (!isAt("\"")) {
                fail("a key is expected");
            }
            const std::size_t keyAt = m_at;
            std::string key = string();
            skipBlanks();
            if (!skip(":")) {
                fail("a colon is missing");
            }
            skipBlanks();
            JSONValue member = value(depth + 1);
            if (!members.try_emplace(std::move(key), std::move(member)).second) {
                m_at = keyAt;
                fail("this key is there twice");
            }
        } while (hasNext("}"));
        return members;
    }

    std::string string() {
        std::string text;
        ++m_at;
        for (;;) {
            const std::size_t start = m_at;
            while (m_at < m_text.size() && m_text[m_at] != '"' && m_text[m_at] != '\\' &&
                   static_cast<unsigned char>(m_text[m_at]) >= 0x20) {
                ++m_at;
            }
            const std::string_view plain = m_text.substr(start, m_at - start);
            if (repairUtf8(plain) != plain) {
                m_at = start;
                fail("this text is not valid UTF-8");
            }
            text += plain;
            if (m_at == m_text.size()) {
                fail("the document ends inside a text");
            }
            if (skip("\"")) {
                return text;
            }
            if (!skip("\\")) {
                fail("a control character inside a text has to be escaped");
            }
            escape(text);
        }
    }

    void escape(std::string& text) {
        constexpr std::string_view kNames = "\"\\/bfnrt";
        constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
        if (skip("u")) {
            appendUtf8(text, codePoint());
            return;
        }
        const std::size_t which = m_at < m_text.size() ? kNames.find(m_text[m_at]) : std::string_view::npos;
        if (which == std::string_view::npos) {
            fail("there is no such escape sequence");
        }
        text += kMeanings[which];
        ++m_at;
    }

    char32_t codePoint() {
        const char32_t unit = hexUnit();
        if (unit < 0xD800 || unit > 0xDFFF) {
            return unit;
        }
        const bool isPair = unit < 0xDC00 && skip("\\u");
        const char32_t second = isPair ? hexUnit() : 0;
        if (second < 0xDC00 || second > 0xDFFF) {
            fail("half a surrogate pair is not allowed");
        }
        return 0x10000 + ((unit - 0xD800) << 10U) + (second - 0xDC00);
    }

    char32_t hexUnit() {
        constexpr std::size_t kDigits = 4;
        const std::string_view digits = m_text.substr(m_at, kDigits);
        unsigned unit = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
        if (error != std::errc{} || end != digits.data() + kDigits) {
            fail("four hexadecimal digits are expected");
        }
        m_at += kDigits;
        return unit;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
};

void writeString(std::string& out, std::string_view text) {
    out += '"';
    for (const char c : text) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\b':
                out += "\\b";
                break;
            case '\f':
                out += "\\f";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                out += static_cast<unsigned char>(c) < 0x20 ? fmt::format("\\u{:04x}", c) : std::string(1, c);
        }
    }
    out += '"';
}

void write(std::string& out, const JSONValue& value, std::size_t level);

/// Elements between two brackets, one a line.
template <typename Elements, typename WriteElement>
void writeList(std::string& out, std::string_view brackets, const Elements& elements, std::size_t level,
               WriteElement writeElement) {
    constexpr std::size_t kIndent = 2;
    out += brackets[0];
    bool isFirst = true;
    for (const auto& element : elements) {
        out += isFirst ? "\n" : ",\n";
        isFirst = false;
        out.append((level + 1) * kIndent, ' ');
        writeElement(element);
    }
    if (!isFirst) {
        out += '\n';
        out.append(level * kIndent, ' ');
    }
    out += brackets[1];
}

void write(std::string& out, const JSONValue& value, std::size_t level) {
    if (const auto* boolean = value.boolean()) {
        out += *boolean ? "true" : "false";
    } else if (const auto* number = value.number()) {
        out += number->literal();
    } else if (const auto* string = value.string()) {
        writeString(out, *string);
    } else if (const auto* array = value.array()) {
        writeList(out, "[]", *array, level, [&](const JSONValue& element) { write(out, element, level + 1); });
    } else if (const auto* object = value.object()) {
        writeList(out, "{}", *object, level, [&](const auto& member) {
            writeString(out, member.first);
            out += ": ";
            write(out, member.second, level + 1);
        });
    } else {
        out += "null";
    }
}

}  // namespace

JSONNumber::JSONNumber(std::string literal) : m_literal(std::move(literal)) {
    if (m_literal.empty() || numberLength(m_literal) != m_literal.size()) {
        throw std::invalid_argument("not a JSON number: " + m_literal);
    }
}

bool JSONNumber::operator==(const JSONNumber& other) const {
    if (m_literal == other.m_literal) {
        return true;
    }
    const auto mine = decimalOf(m_literal);
    return mine && mine == decimalOf(other.m_literal);
}

JSONValue JSONValue::parse(std::string_view text) {
    return Parser(text).document();
}

std::string JSONValue::dump() const {
    std::string out;
    write(out, *this, 0);
    return out;
}

const JSONValue* JSONValue::member(const std::string& key) const {
    const Object* members = object();
    if (members == nullptr) {
        return nullptr;
    }
    const auto found = members->find(key);
    return found == members->end() ? nullptr : &found->second;
}

}  // namespace vorn
