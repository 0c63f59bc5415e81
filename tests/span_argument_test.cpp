#include "cli/span_argument.hpp"

#include <gtest/gtest.h>

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

TEST(ParseSpan, TakesAWholeNumberAndItsUnit) {
    const struct {
        const char* text;
        std::optional<Seconds> span;
    } cases[] = {
        {"30s", 30s},
        {"90m", 90min},
        {"24h", 24h},
        {"007d", 168h},
        {"366d", 366 * 24h},
        {"367d", std::nullopt},
        {"2147483648s", std::nullopt},
        {"99999999999999999999d", std::nullopt},
        {"0h", std::nullopt},
        {"-1h", std::nullopt},
        {"+1h", std::nullopt},
        {"1.5h", std::nullopt},
        {"1 h", std::nullopt},
        {"1hh", std::nullopt},
        {"1w", std::nullopt},
        {"24", std::nullopt},
        {"h", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(parseSpan(c.text), c.span) << c.text;
    }
}

}  // namespace
}  // namespace vorn::cli
