#include "core/support/json_value.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <utility>

#include "core/support/json.hpp"

namespace vorn {
namespace {

constexpr std::size_t kDeepest = 256;

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

/// A document as nlohmann's lexer is shown it. That reads numbers into machine types, so each is shown as one 0 and
/// kept here as it was written; and it takes a zero byte for the end of the text, so it is shown another one that no
/// document may hold, and so is what only looks like a number.
class ShownText {
public:
    explicit ShownText(std::string_view text) : m_text(text) {}

    [[nodiscard]] bool isAtEnd() const { return m_at == m_text.size(); }

    [[nodiscard]] char shown() const {
        constexpr char kRefused = '\x01';
        const char c = m_text[m_at];
        if (m_isInString) {
            return c;
        }
        if (c == '-' || isDigit(c)) {
            return numberLength(m_text.substr(m_at)) > 0 ? '0' : kRefused;
        }
        // Behind a number it would make another one of the 0.
        const bool isMoreOfNumber = m_at > 0 && isDigit(m_text[m_at - 1]) && (c == '.' || c == 'e' || c == 'E');
        return c == '\0' || isMoreOfNumber ? kRefused : c;
    }

    void advance() {
        const char c = m_text[m_at];
        std::size_t length = 1;
        if (std::exchange(m_isEscaped, false)) {
            // Whatever it is, the string goes on.
        } else if (m_isInString) {
            m_isEscaped = c == '\\';
            m_isInString = c != '"';
        } else if (c == '"') {
            m_isInString = true;
            m_stringAt = m_at;
        } else if (const std::size_t digits = numberLength(m_text.substr(m_at)); digits > 0) {
            m_number = m_text.substr(m_at, digits);
            length = digits;
        }
        m_at += length;
        ++m_shownBytes;
    }

    /// The number that was passed last.
    std::string_view takeNumber() { return std::exchange(m_number, {}); }
    [[nodiscard]] std::size_t lastString() const { return m_stringAt; }

    /// Where the part begins that was read last; `isEnd`: the end of the text counts as one.
    [[nodiscard]] std::size_t lastPart(bool isEnd) const {
        if (m_number.data() != nullptr) {  // the lexer has looked beyond it
            return static_cast<std::size_t>(m_number.data() - m_text.data());
        }
        if (isEnd || m_at == 0) {
            return m_at;
        }
        std::size_t at = m_at - 1;
        const auto isLetter = [](char c) {
            return c >= 'a' && c <= 'z';
        };
        while (!m_isInString && at > 0 && isLetter(m_text[at]) && isLetter(m_text[at - 1])) {
            --at;
        }
        return at;
    }

    /// Notes what is wrong, and where. Always false: what the parser's events return to end it.
    bool fail(std::size_t at, const char* reason) {
        m_failedAt = at;
        m_failure = reason;
        return false;
    }
    [[nodiscard]] bool hasFailed() const { return m_failure != nullptr; }
    /// "line 3, column 7: a comment is not allowed"; only after a failure.
    [[nodiscard]] std::string failure() const {
        const std::string_view before = m_text.substr(0, m_failedAt);
        const auto line = std::ranges::count(before, '\n') + 1;
        const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is the start of the text
        // Not by fmt: it would double the size of the status-line relay.
        return "line " + std::to_string(line) + ", column " + std::to_string(m_failedAt - lineStart + 1) + ": " +
               m_failure;
    }

    [[nodiscard]] std::size_t shownBytes() const { return m_shownBytes; }
    [[nodiscard]] std::string_view text() const { return m_text; }

private:
    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_shownBytes = 0;
    std::size_t m_stringAt = 0;
    std::string_view m_number;  ///< Null once it was taken.
    std::size_t m_failedAt = 0;
    const char* m_failure = nullptr;
    bool m_isInString = false;
    bool m_isEscaped = false;
};

/// Reads a `ShownText` for nlohmann's parser; null stands at the end of every one.
struct ShownByte {
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = char;

    ShownText* text = nullptr;

    char operator*() const { return text->shown(); }
    ShownByte& operator++() {
        text->advance();
        return *this;
    }
    [[nodiscard]] bool isEnd() const { return text == nullptr || text->isAtEnd(); }
    bool operator==(const ShownByte& other) const { return isEnd() == other.isEnd(); }
};

/// What is wrong inside a string, from how nlohmann's lexer says it.
const char* stringComplaint(std::string_view message) {
    constexpr std::pair<std::string_view, const char*> kComplaints[] = {
        {"missing closing quote", "the document ends inside a text"},
        {"control character", "a control character inside a text has to be escaped"},
        {"ill-formed UTF-8", "this text is not valid UTF-8"},
        {"'\\u' must be followed", "four hexadecimal digits are expected"},
        {"surrogate", "half a surrogate pair is not allowed"},
        {"forbidden character after backslash", "there is no such escape sequence"},
    };
    constexpr std::string_view kMark = "invalid string: ";
    const std::size_t mark = message.find(kMark);
    if (mark == std::string_view::npos) {
        return nullptr;
    }
    message.remove_prefix(mark + kMark.size());
    const auto* const found =
        std::ranges::find_if(kComplaints, [&](const auto& known) { return message.starts_with(known.first); });
    return found == std::end(kComplaints) ? "this text cannot be read" : found->second;
}

/// Builds a document from the events of nlohmann's parser, which prescribes the names.
class DocumentBuilder {
public:
    explicit DocumentBuilder(ShownText& text) : m_text(text) {}

    JSONValue take() { return std::move(m_document); }

    bool null() { return place(nullptr); }
    bool boolean(bool value) { return place(value); }
    bool number_integer(std::int64_t) { return number(); }              // NOLINT(readability-identifier-naming)
    bool number_unsigned(std::uint64_t) { return number(); }            // NOLINT(readability-identifier-naming)
    bool number_float(double, const std::string&) { return number(); }  // NOLINT(readability-identifier-naming)
    bool binary(const nlohmann::json::binary_t&) { return false; }      // JSON text has none
    bool string(std::string& value) { return place(std::move(value)); }
    bool start_object(std::size_t) { return open(JSONValue::Object()); }  // NOLINT(readability-identifier-naming)
    bool end_object() { return close(); }                                 // NOLINT(readability-identifier-naming)
    bool start_array(std::size_t) { return open(JSONValue::Array()); }    // NOLINT(readability-identifier-naming)
    bool end_array() { return close(); }                                  // NOLINT(readability-identifier-naming)

    bool key(std::string& key) {
        Open& object = m_open.back();
        if (std::get<JSONValue::Object>(object.content).contains(key)) {
            return m_text.fail(m_text.lastString(), "this key is there twice");
        }
        object.key = std::move(key);
        m_hasKey = true;
        return true;
    }

    bool parse_error(std::size_t asked, const std::string&,  // NOLINT(readability-identifier-naming)
                     const nlohmann::json::exception& error) {
        const std::string_view message = error.what();
        const bool isLiteral = message.find(" - invalid literal") != std::string_view::npos;
        const std::size_t at = m_text.lastPart(asked > m_text.shownBytes() && !isLiteral);
        const char* reason = stringComplaint(message);
        return m_text.fail(at, reason != nullptr ? reason : complaint(at));
    }

private:
    /// An array or object whose end has not come yet.
    struct Open {
        std::variant<JSONValue::Array, JSONValue::Object> content;
        std::string key{};  ///< Of the member that comes next.
    };

    bool number() { return place(JSONNumber(std::string(m_text.takeNumber()))); }

    bool hasRoom() { return m_open.size() <= kDeepest || m_text.fail(m_text.lastPart(false), "nested too deeply"); }

    bool open(std::variant<JSONValue::Array, JSONValue::Object> content) {
        if (!hasRoom()) {
            return false;
        }
        m_open.push_back({.content = std::move(content)});
        m_hasKey = false;
        return true;
    }

    bool close() {
        JSONValue value =
            std::visit([](auto& content) { return JSONValue(std::move(content)); }, m_open.back().content);
        m_open.pop_back();
        return place(std::move(value));
    }

    bool place(JSONValue value) {
        if (!hasRoom()) {
            return false;
        }
        m_hasKey = false;
        if (m_open.empty()) {
            m_document = std::move(value);
            m_isDone = true;
        } else if (auto* members = std::get_if<JSONValue::Object>(&m_open.back().content)) {
            members->emplace(std::move(m_open.back().key), std::move(value));
        } else {
            std::get<JSONValue::Array>(m_open.back().content).push_back(std::move(value));
        }
        return true;
    }

    /// What is wrong outside of strings: `at` is where the part stands that does not belong there.
    [[nodiscard]] const char* complaint(std::size_t at) const {
        const std::string_view text = m_text.text();
        const std::string_view rest = text.substr(at);
        const std::size_t last = text.substr(0, at).find_last_not_of(" \t\n\r");
        const char before = last == std::string_view::npos ? '\0' : text[last];
        if (rest.starts_with("//") || rest.starts_with("/*")) {
            return "a comment is not allowed";
        }
        if (m_isDone) {
            return "something follows the end of the document";
        }
        if (rest.empty()) {
            return "the document ends too early";
        }
        if (before == ',' && (rest.front() == ']' || rest.front() == '}')) {
            return "a comma before the end is not allowed";
        }
        if (m_hasKey && before != ':') {
            return "a colon is missing";
        }
        if (!m_hasKey && !m_open.empty() && m_open.back().content.index() == 1 && (before == '{' || before == ',')) {
            return "a key is expected";
        }
        return std::string_view("[,:").find(before) != std::string_view::npos || before == '\0' ? "a value is expected"
                                                                                                : "a comma is missing";
    }

    ShownText& m_text;
    std::vector<Open> m_open;
    bool m_hasKey = false;  ///< The value of a member comes next.
    bool m_isDone = false;
    JSONValue m_document;
};

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
        out += dumpJson(*string);
    } else if (const auto* array = value.array()) {
        writeList(out, "[]", *array, level, [&](const JSONValue& element) { write(out, element, level + 1); });
    } else if (const auto* object = value.object()) {
        writeList(out, "{}", *object, level, [&](const auto& member) {
            out += dumpJson(member.first) + ": ";
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

std::optional<JSONValue> JSONValue::parsed(std::string_view text, std::string* failure) {
    ShownText shown(text);
    DocumentBuilder builder(shown);
    if (text.starts_with("\xEF\xBB\xBF")) {
        shown.fail(0, "a byte order mark is not allowed");
    } else {
        nlohmann::json::sax_parse(ShownByte{&shown}, ShownByte{}, &builder);
    }
    if (!shown.hasFailed()) {
        return builder.take();
    }
    if (failure != nullptr) {
        *failure = shown.failure();
    }
    return std::nullopt;
}

JSONValue JSONValue::parse(std::string_view text) {
    std::string failure;
    auto document = parsed(text, &failure);
    if (!document) {
        throw ParseError(failure);
    }
    return *std::move(document);
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
