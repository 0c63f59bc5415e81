#include "core/support/text.hpp"

#include <gtest/gtest.h>

namespace vorn {
namespace {

TEST(Text, repairsInvalidUtf8) {
    const std::pair<std::string, std::string> cases[] = {
        {"plain · “ünï” 🤖", "plain · “ünï” 🤖"},
        {"cut \xF0\x9F\xA4", "cut \uFFFD"},
        {"alone \x80\x80.", "alone \uFFFD\uFFFD."},
        {"long form \xC0\xAF", "long form \uFFFD\uFFFD"},
        {"surrogate \xED\xA0\x80", "surrogate \uFFFD\uFFFD\uFFFD"},
        {"too high \xF4\x90\x80\x80", "too high \uFFFD\uFFFD\uFFFD\uFFFD"},
        {std::string("nul \0 stays", 11), std::string("nul \0 stays", 11)},
    };
    for (const auto& [bytes, repaired] : cases) {
        EXPECT_EQ(repairUtf8(bytes), repaired);
    }
}

TEST(Text, cutsAtCodePoints) {
    EXPECT_EQ(firstCodePoints("aé🤖b", 3), "aé🤖");
    EXPECT_EQ(firstCodePoints("aé", 9), "aé");
    EXPECT_EQ(firstCodePoints("aé", 0), "");
}

}  // namespace
}  // namespace vorn
