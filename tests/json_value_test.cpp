#include "core/support/json_value.hpp"

#include <clocale>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorn {

void PrintTo(const JSONValue& value, std::ostream* out) {
    *out << value.dump();
}

namespace {

using testing::HasSubstr;

std::string complaintAbout(std::string_view text) {
    try {
        return "nothing, it reads as " + JSONValue::parse(text).dump();
    } catch (const JSONValue::ParseError& error) {
        return error.what();
    }
}

TEST(JSONValue, writesWhatItReadWithSortedKeys) {
    EXPECT_EQ(JSONValue::parse(" {\"b\":[1,{},[ ]],\"a\" : null,\n\"\":{\"x\":true,\"w\":false}}\r\n\t").dump(),
              "{\n  \"\": {\n    \"w\": false,\n    \"x\": true\n  },\n  \"a\": null,\n"
              "  \"b\": [\n    1,\n    {},\n    []\n  ]\n}");
    const std::string deep = std::string(200, '[') + std::string(200, ']');
    for (const std::string& text :
         {std::string("null"), std::string("false"), std::string(R"("")"), std::string("[]"), deep,
          std::string(R"({"a": {"b": [1, "two", null, true, {"c": []}]}, "ключ": "значение"})")}) {
        const JSONValue value = JSONValue::parse(text);
        EXPECT_EQ(JSONValue::parse(value.dump()), value) << text;
    }
}

TEST(JSONValue, keepsNumbersAsTheyAreWritten) {
    // A program with a user interface has the user's own decimal point.
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    for (const char* literal : {"0", "-0", "9007199254740993", "-9223372036854775809", "123456789012345678901234567890",
                                "1.50", "1e5", "1E+400", "0.1", "2.2250738585072014e-308", "1e-99999999999999999999"}) {
        EXPECT_EQ(JSONValue::parse(literal).dump(), literal);
    }
    std::setlocale(LC_ALL, "C");
    const struct {
        const char* a;
        const char* b;
        bool equal;
    } pairs[] = {
        {"1", "1.0", true},
        {"100", "1e2", true},
        {"-0", "0", true},
        {"0.0010", "1E-3", true},
        {"12.5e1", "125", true},
        {"0e99999999999999999999", "0.00", true},
        {"1", "-1", false},
        {"1e1", "1e2", false},
        {"9007199254740993", "9007199254740992", false},
        {"0.1", "0.10000000000000001", false},
        {"1e99999999999999999999", "1e2", false},
    };
    for (const auto& pair : pairs) {
        EXPECT_EQ(JSONNumber(std::string(pair.a)) == JSONNumber(std::string(pair.b)), pair.equal)
            << pair.a << " and " << pair.b;
    }
    EXPECT_THROW(JSONNumber("1 "), std::invalid_argument);
}

TEST(JSONValue, keepsTheCodePointsOfTexts) {
    std::string text("\0\x01\x1f\x7f\"\\/\b\f\n\r\t", 12);
    text += "e\u0301 é 😀 \u2028 \uFFFF \uFEFF";
    const JSONValue value = JSONValue(text);
    EXPECT_EQ(JSONValue::parse(value.dump()), value);
    EXPECT_THAT(value.dump(), HasSubstr("\\u0000\\u0001\\u001f\x7f\\\"\\\\/\\b\\f\\n\\r\\te\u0301"));
    EXPECT_EQ(JSONValue::parse(R"("\u00e9\/\ud83d\uDE00\uffff")"), JSONValue("é/😀\uFFFF"));
    EXPECT_NE(JSONValue("é"), JSONValue("e\u0301"));
}

TEST(JSONValue, refusesWhatItWouldHaveToRepair) {
    const struct {
        std::string_view text;
        const char* complaint;
    } cases[] = {
        {"", "line 1, column 1: the document ends too early"},
        {" \n ", "line 2, column 2: the document ends too early"},
        {"{\"a\": 1,\n  \"b\": 2,\n  \"a\": 3}", "line 3, column 3: this key is there twice"},
        {"{\n// mine\n}", "line 2, column 1: a comment is not allowed"},
        {"[1,]", "a comma before the end is not allowed"},
        {"{\"a\":1,}", "a comma before the end is not allowed"},
        {"{a: 1}", "a key is expected"},
        {"\xEF\xBB\xBF{}", "a byte order mark is not allowed"},
        {std::string_view("{}\0", 3), "something follows the end"},
        {"\"caf\xE9\"", "not valid UTF-8"},
        {"\"\xED\xA0\x80\"", "not valid UTF-8"},
        {R"("\ud800")", "half a surrogate pair"},
        {R"("\udc00\ud800")", "half a surrogate pair"},
        {R"("\ud83d\u0041")", "half a surrogate pair"},
        {R"("\u12G4")", "four hexadecimal digits"},
        {R"("\x41")", "no such escape"},
        {"\"a\nb\"", "has to be escaped"},
        {"\"abc", "ends inside a text"},
        {"\"abc\\", "no such escape"},
        {"01", "something follows the end"},
        {"[1.2.3]", "column 5: a comma is missing"},
        {"[12e3e4]", "column 6: a comma is missing"},
        {"+1", "a value is expected"},
        {"1.", "a value is expected"},
        {"1e", "a value is expected"},
        {"NaN", "a value is expected"},
        {"tru", "a value is expected"},
        {"[", "ends too early"},
    };
    for (const auto& c : cases) {
        EXPECT_THAT(complaintAbout(c.text), HasSubstr(c.complaint)) << c.text;
    }
    EXPECT_THAT(complaintAbout(std::string(1000000, '[')), HasSubstr("nested too deeply"));
}

}  // namespace
}  // namespace vorn
