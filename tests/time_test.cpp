#include "core/support/time.hpp"

#include <gtest/gtest.h>

namespace vorn {
namespace {

using namespace std::chrono;

std::optional<double> seconds(std::string_view text, Fraction fraction) {
    const auto instant = parseIso8601(text, fraction);
    return instant ? std::optional(secondsSince1970(*instant)) : std::nullopt;
}

TEST(Iso8601, readsInternetDateTimes) {
    const Instant evening = sys_days{2026y / November / 22} + 20h + 45min;
    const double base = secondsSince1970(evening);
    const struct {
        const char* text;
        Fraction fraction;
        std::optional<double> expected;
    } cases[] = {
        {"2026-11-22T20:45:00Z", Fraction::forbidden, base},
        {"2026-11-22T21:45:00+01:00", Fraction::forbidden, base},
        {"2026-11-22T15:15:00-0530", Fraction::forbidden, base},
        {"2026-11-22T20:45:00.25Z", Fraction::required, base + 0.25},
        {"2026-11-22T20:45:00.250000000000000000000000Z", Fraction::required, base + 0.25},
        {"2026-11-22T20:45:00Z", Fraction::optional, base},
        {"2026-11-22T20:44:60Z", Fraction::optional, base},
        {"2026-11-22T20:45:00.25Z", Fraction::forbidden, std::nullopt},
        {"2026-11-22T20:45:00Z", Fraction::required, std::nullopt},
        {"2026-11-22T20:45:00.Z", Fraction::required, std::nullopt},
        {"2026-11-22T20:45:00,25Z", Fraction::required, std::nullopt},
        {"2026-11-22T20:45:00.25", Fraction::required, std::nullopt},
        {"2026-11-22T20:45:00", Fraction::optional, std::nullopt},
        {"2026-11-22 20:45:00Z", Fraction::optional, std::nullopt},
        {"2026-02-29T20:45:00Z", Fraction::optional, std::nullopt},
        {"2026-11-22T24:00:00Z", Fraction::optional, std::nullopt},
        {"2026-11-22T20:45:00+25:00", Fraction::optional, std::nullopt},
        {"2026-11-22T20:45:00Zx", Fraction::optional, std::nullopt},
        {"2026-11-2", Fraction::optional, std::nullopt},
        {"", Fraction::optional, std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(seconds(c.text, c.fraction), c.expected) << c.text;
    }
}

// Cut-offs are computed by subtraction and compared with parsed times: both must land on the same double.
TEST(Iso8601, keepsMillisecondsComparableAfterSubtraction) {
    const Instant now = *parseIso8601("2026-11-22T20:45:00.123Z", Fraction::required);
    EXPECT_EQ(now - 168h, *parseIso8601("2026-11-15T20:45:00.123Z", Fraction::required));
    EXPECT_LT(*parseIso8601("2026-11-15T20:45:00.122Z", Fraction::required), now - 168h);
}

TEST(Iso8601, writesUtcRoundedDown) {
    EXPECT_EQ(formatIso8601(instantSince1970(1795380300.999)), "2026-11-22T20:45:00Z");
    EXPECT_EQ(formatIso8601(instantSince1970(-0.5)), "1969-12-31T23:59:59Z");
    EXPECT_EQ(formatIso8601Milliseconds(instantSince1970(1795380300.25)), "2026-11-22T20:45:00.250Z");
}

}  // namespace
}  // namespace vorn
