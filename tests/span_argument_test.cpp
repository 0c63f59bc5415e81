#include "cli/span_argument.hpp"

#include <gtest/gtest.h>

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

TEST(ParseSpan, TakesAWholeNumberAndItsUnit) {
    const std::pair<const char*, std::optional<Seconds>> cases[] = {
        {"90m", 90min},        {"24h", 24h},           {"007d", 168h},
        {"366d", 366 * 24h},   {"367d", std::nullopt}, {"2147483648s", std::nullopt},
        {"0h", std::nullopt},  {"-1h", std::nullopt},  {"1.5h", std::nullopt},
        {"1 h", std::nullopt}, {"1hh", std::nullopt},  {"1w", std::nullopt},
        {"24", std::nullopt},  {"", std::nullopt}};
    for (const auto& [text, span] : cases) {
        EXPECT_EQ(parseSpan(text), span) << text;
    }
}

}  // namespace
}  // namespace vorn::cli
