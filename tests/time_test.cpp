#include "core/support/time.hpp"

#include <gtest/gtest.h>

namespace vorn {
namespace {

using namespace std::chrono;
using enum Fraction;

std::optional<double> seconds(std::string_view text, Fraction fraction) {
    const auto instant = parseIso8601(text, fraction);
    return instant ? std::optional(secondsSince1970(*instant)) : std::nullopt;
}

TEST(Iso8601, readsInternetDateTimes) {
    const Instant evening = sys_days{2026y / November / 22} + 20h + 45min;
    const double base = secondsSince1970(evening);
    const std::tuple<const char*, Fraction, std::optional<double>> cases[] = {
        {"2026-11-22T20:45:00Z", forbidden, base},
        {"2026-11-22T21:45:00+01:00", forbidden, base},
        {"2026-11-22T15:15:00-0530", forbidden, base},
        {"2026-11-22T20:45:00.25Z", required, base + 0.25},
        {"2026-11-22T20:45:00.250000000000000000000000Z", required, base + 0.25},
        {"2026-11-22T20:45:00Z", optional, base},
        {"2026-11-22T20:44:60Z", optional, base},
        {"2026-11-22T20:45:00.25Z", forbidden, {}},
        {"2026-11-22T20:45:00Z", required, {}},
        {"2026-11-22T20:45:00,25Z", required, {}},
        {"2026-11-22T20:45:00", optional, {}},
        {"2026-11-22 20:45:00Z", optional, {}},
        {"2026-02-29T20:45:00Z", optional, {}},
        {"2026-11-22T24:00:00Z", optional, {}},
        {"2026-11-22T20:45:00+25:00", optional, {}},
        {"9999-12-31T23:59:60Z", optional, {}},
        {"9999-12-31T23:59:59-00:01", optional, {}},
        {"0000-01-01T00:00:00+00:01", optional, {}},
        {"", optional, {}},
    };
    for (const auto& [text, fraction, expected] : cases) {
        EXPECT_EQ(seconds(text, fraction), expected) << text;
    }
}

// Cut-offs are computed by subtraction and compared with parsed times: both must land on the same double.
TEST(Iso8601, keepsMillisecondsComparableAfterSubtraction) {
    const Instant now = *parseIso8601("2026-11-22T20:45:00.123Z", required);
    EXPECT_EQ(now - 168h, *parseIso8601("2026-11-15T20:45:00.123Z", required));
    EXPECT_LT(*parseIso8601("2026-11-15T20:45:00.122Z", required), now - 168h);
}

TEST(Iso8601, writesUtcRoundedDown) {
    EXPECT_EQ(formatIso8601(instantSince1970(1795380300.999)), "2026-11-22T20:45:00Z");
    EXPECT_EQ(formatIso8601(instantSince1970(-0.5)), "1969-12-31T23:59:59Z");
    EXPECT_EQ(formatIso8601Milliseconds(instantSince1970(1795380300.25)), "2026-11-22T20:45:00.250Z");
    EXPECT_EQ(formatIso8601(instantSince1970(1e300)), "32767-12-31T00:00:00Z");
    EXPECT_EQ(formatIso8601Milliseconds(instantSince1970(-1e300)), "-32767-01-01T00:00:00.000Z");
}

}  // namespace
}  // namespace vorn
