#include "core/support/zone_offsets.hpp"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>

#include <gtest/gtest.h>

#include "core/support/unicode/time_zone.hpp"
#include "core/support/unicode/wall_offsets.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;

const Instant kSummer = sys_days{2026y / 7 / 1} + 12h;

TEST(ZoneOffsets, CountsTheHoursOfTheWallClock) {
    const ZoneOffsets utc;
    const Instant monday = sys_days{2026y / 11 / 23};
    EXPECT_EQ(hourOfWeek(utc.hour(monday)), 0);
    EXPECT_EQ(hourOfWeek(utc.hour(monday - 1s)), 167);
    EXPECT_EQ(hourOfWeek(utc.hour(Instant{} - 73h)), 167) << "before 1970";
    EXPECT_EQ(dayOfHour(utc.hour(Instant{} - 1s)), -1);

    const ZoneOffsets kolkata({{Instant{}, 5h + 30min}});
    EXPECT_EQ(hourOfWeek(kolkata.hour(monday)), 5);
    EXPECT_EQ(kolkata.nextHour(monday), monday + 30min);
    EXPECT_EQ(kolkata.nextHour(monday + 30min), monday + 90min) << "a full hour is the beginning of the next";

    const double infinity = std::numeric_limits<double>::infinity();
    for (const double wild : {infinity, -infinity, std::nan(""), 1e300}) {
        EXPECT_LE(std::abs(utc.hour(Instant{Seconds{wild}})), 10'000'000'000);
    }
}

TEST(WallOffsets, HaveEveryChangeToTheMinute) {
    const struct {
        const char* zone;
        std::vector<ZoneOffsets::Change> changes;
    } cases[] = {
        {"Europe/Berlin",
         {{sys_days{2026y / 7 / 1} + 12h, 2h},
          {sys_days{2026y / 10 / 25} + 1h, 1h},
          {sys_days{2027y / 3 / 28} + 1h, 2h}}},
        {"America/New_York",
         {{sys_days{2026y / 7 / 1} + 12h, -4h},
          {sys_days{2026y / 11 / 1} + 6h, -5h},
          {sys_days{2027y / 3 / 14} + 7h, -4h}}},
        {"Australia/Lord_Howe",
         {{sys_days{2026y / 7 / 1} + 12h, 10h + 30min},
          {sys_days{2026y / 10 / 3} + 15h + 30min, 11h},
          {sys_days{2027y / 4 / 3} + 15h, 10h + 30min}}},
        {"Asia/Kathmandu", {{sys_days{2026y / 7 / 1} + 12h, 5h + 45min}}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(wallOffsets(timeZoneNamed(c.zone).value(), kSummer, kSummer + 24h * 300), ZoneOffsets(c.changes))
            << c.zone;
    }
    EXPECT_EQ(wallOffsets({}, kSummer, kSummer), ZoneOffsets{});
    EXPECT_EQ(wallOffsets({}, kSummer, Instant{Seconds{std::numeric_limits<double>::infinity()}}), ZoneOffsets{});
}

TEST(ZoneOffsets, EndsAnHourWhereTheClockChanges) {
    const Instant change = sys_days{2026y / 10 / 3} + 15h + 30min;  // from 2:00 to 2:30 on Lord Howe Island
    const ZoneOffsets zone({{kSummer, 10h + 30min}, {change, 11h}});
    EXPECT_EQ(zone.nextHour(change - 10min), change);
    EXPECT_EQ(zone.nextHour(change), change + 30min);
    EXPECT_EQ(zone.hour(change) - zone.hour(change - 1s), 1);
}

}  // namespace
}  // namespace vorn
