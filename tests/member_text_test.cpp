#include "core/support/member_text.hpp"

#include <gtest/gtest.h>

namespace vorn {
namespace {

TEST(MemberText, FindsAMemberOfTheOutermostObject) {
    const std::pair<const char*, const char*> cases[] = {
        {R"({"a":1})", "1"},
        {R"( { "b" : [ {"a":2} , "a" ] , "a" : { "x" : [1, "}"] } } )", R"({ "x" : [1, "}"] })"},
        {R"({"b":"\"a\":7","a":"\\\"a"})", R"("\\\"a")"},
        {R"({"a":1,"a":null})", "null"},
        {R"({"b":"a","c":1})", ""},
        {R"({"b":{"a":1},"c":{"a":2}})", ""},
        {R"([{"a":1},"a",3])", ""},
        {R"({"a)", ""},
        {R"({"a":1)", ""},
        {R"(]]}},{"a":1})", "1"},
        {"\"", ""},
        {"", ""},
    };
    for (const auto& [object, text] : cases) {
        EXPECT_EQ(memberText(object, "a"), text) << object;
    }
}

}  // namespace
}  // namespace vorn
