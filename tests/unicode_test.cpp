#include <chrono>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core/support/unicode/locale_time.hpp"
#include "core/support/unicode/regular_expression.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "core/support/zone_file.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using test::ScopedEnvironment;

const Instant kSundayNight = sys_days{2026y / 11 / 22} + 22h + 16min;
const TimeZone kBerlin = readZoneRule("CET-1CEST,M3.5.0,M10.5.0/3").value();

TEST(RegularExpression, GivesUpOnEndlessWork) {
    EXPECT_THROW(RegularExpression("(a"), std::invalid_argument);
    const RegularExpression endless("^(?:(a+)+b|(c))");
    EXPECT_EQ(endless.firstMatch(std::string(40, 'a')), std::nullopt);
    const RegularExpression::Match match{"c", std::nullopt, "c"};
    EXPECT_EQ(endless.firstMatch("c\xFF"), match);
}

TEST(LocaleTime, SpeaksTheUsersLocale) {
    using Text = const char*;
    const std::tuple<Text, Text, Text, std::string> cases[] = {
        {nullptr, nullptr, nullptr, "23:16 Sun"},
        {"C.UTF-8", "de_DE.UTF-8", "de_DE.UTF-8", "23:16 Sun"},
        {"", "POSIX", "de_DE", "23:16 Sun"},
        {nullptr, "en_US.UTF-8", "de_DE.UTF-8", "11:16\u202FPM Sun"},
        {nullptr, "", "de_DE.UTF-8@euro", "23:16 So"},
        {"sr_RS.UTF-8@latin", nullptr, nullptr, "23:16 ned"},
        {"sr_RS@cyrillic", nullptr, nullptr, "23:16 нед"},
        {"xx_no such locale", nullptr, nullptr, "23:16 Sun"}};
    for (const auto& [all, time, lang, expected] : cases) {
        const ScopedEnvironment first("LC_ALL", all);
        const ScopedEnvironment second("LC_TIME", time);
        const ScopedEnvironment third("LANG", lang);
        EXPECT_EQ(shortTime(kSundayNight, kBerlin) + " " + shortWeekday(kSundayNight, kBerlin), expected);
    }
}

TEST(LocaleTime, GivesEveryInstantAnAnswer) {
    const ScopedEnvironment all("LC_ALL", "C");
    EXPECT_EQ(shortTime(instantSince1970(std::numeric_limits<double>::quiet_NaN()), TimeZone()), "");
    EXPECT_NE(shortTime(instantSince1970(1e300), TimeZone()), "");
}

TEST(LocaleTime, ComparesDaysInTheZone) {
    EXPECT_TRUE(isSameDay(kSundayNight, kSundayNight + 44min - 1ms + 60min, TimeZone()));
    EXPECT_FALSE(isSameDay(kSundayNight, kSundayNight + 104min, TimeZone()));
    EXPECT_FALSE(isSameDay(kSundayNight, kSundayNight + 44min, kBerlin));
    // A day of 25 hours: the clock went back in Berlin on 25 October.
    const Instant midnight = sys_days{2026y / 10 / 24} + 22h;
    EXPECT_TRUE(isSameDay(midnight, midnight + 24h + 59min, kBerlin));
    EXPECT_FALSE(isSameDay(midnight, midnight + 25h, kBerlin));
    EXPECT_TRUE(isSameDay(instantSince1970(-1), instantSince1970(-86400), TimeZone()));
}

TEST(LocaleTime, MayBeAskedFromSeveralThreads) {
    std::vector<std::thread> threads;
    for (const char* name : {"Europe/Berlin", "Asia/Kathmandu", "Europe/Berlin", "UTC"}) {
        threads.emplace_back([name] {
            for (int i = 0; i < 200; ++i) {
                EXPECT_NE(shortTime(kSundayNight, timeZoneNamed(name).value()), "");
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace vorn
