#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorn {

/// A JSON number as it was written, since no number type of the language holds all of them. Equal by value: 1, 1.0 and
/// 10e-1 are the same.
class JSONNumber {
public:
    explicit JSONNumber(std::int64_t value) : m_literal(std::to_string(value)) {}
    /// Throws std::invalid_argument when `literal` is no JSON number.
    explicit JSONNumber(std::string literal);

    [[nodiscard]] const std::string& literal() const { return m_literal; }
    bool operator==(const JSONNumber& other) const;

private:
    std::string m_literal;
};

/// Any JSON value, kept without loss: for files that belong to somebody else.
class JSONValue {
public:
    using Array = std::vector<JSONValue>;
    using Object = std::map<std::string, JSONValue>;
    using Null = std::nullptr_t;

    /// Text that is not exactly one JSON document; `what()` says what is wrong, and at which line and column.
    class ParseError : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    JSONValue() : m_payload(nullptr) {}
    // Not explicit: documents are written down as what they hold.
    JSONValue(bool value) : m_payload(value) {}                           // NOLINT(google-explicit-constructor)
    JSONValue(JSONNumber value) : m_payload(std::move(value)) {}          // NOLINT(google-explicit-constructor)
    JSONValue(int value) : m_payload(JSONNumber(std::int64_t{value})) {}  // NOLINT(google-explicit-constructor)
    JSONValue(std::string value) : m_payload(std::move(value)) {}         // NOLINT(google-explicit-constructor)
    JSONValue(const char* value) : m_payload(std::string(value)) {}       // NOLINT(google-explicit-constructor)
    JSONValue(Array value) : m_payload(std::move(value)) {}               // NOLINT(google-explicit-constructor)
    JSONValue(Object value) : m_payload(std::move(value)) {}              // NOLINT(google-explicit-constructor)
    JSONValue(Null) : m_payload(nullptr) {}                               // NOLINT(google-explicit-constructor)

    /// Stricter than most readers, since what is read is written back: a comment, a trailing comma, a key that occurs
    /// twice, a byte order mark, invalid UTF-8, half a surrogate pair or more than 256 levels throw ParseError.
    static JSONValue parse(std::string_view text);
    /// `parse` without an exception: empty instead, and `failure`, unless null, tells what is wrong.
    static std::optional<JSONValue> parsed(std::string_view text, std::string* failure = nullptr);
    /// Two blanks a level, keys sorted, "/" and letters beyond ASCII as they are, no line break at the end.
    [[nodiscard]] std::string dump() const;

    // Each is null unless the value is of that type; for JSON null all are.
    [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&m_payload); }
    [[nodiscard]] const JSONNumber* number() const { return std::get_if<JSONNumber>(&m_payload); }
    [[nodiscard]] const std::string* string() const { return std::get_if<std::string>(&m_payload); }
    [[nodiscard]] const Array* array() const { return std::get_if<Array>(&m_payload); }
    [[nodiscard]] const Object* object() const { return std::get_if<Object>(&m_payload); }

    /// The member of that name; null when this is no object or has none.
    [[nodiscard]] const JSONValue* member(const std::string& key) const;

    bool operator==(const JSONValue&) const = default;

private:
    std::variant<bool, JSONNumber, std::string, Array, Object, Null> m_payload;
};

}  // namespace vorn
