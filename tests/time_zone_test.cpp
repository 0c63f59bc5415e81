#include "core/support/time_zone.hpp"

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/support/process/process.hpp"
#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "core/support/zone_file.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using std::chrono::sys_days;
using test::ScopedEnvironment;
using test::TemporaryDirectory;

constexpr const char* kFolder = "/usr/share/zoneinfo";
const Instant kWinter = sys_days{2026y / 1 / 15} + 12h;
const Instant kSummer = sys_days{2026y / 7 / 15} + 12h;

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (fs::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
        const std::string name = entry->path().lexically_relative(folder).string();
        if (name == "right" || name == "posix") {
            entry.disable_recursion_pending();
        } else if (entry->is_regular_file() && name.find('.') == std::string::npos &&
                   test::readAll(entry->path()).starts_with("TZif")) {
            names.push_back(name);
        }
    }
    return names;
}

/// What the C library makes of the same files.
Seconds offsetInLibrary(Instant instant) {
    const auto time = static_cast<std::time_t>(secondsSince1970(instant));
    std::tm local{};
    ::localtime_r(&time, &local);
    return Seconds{local.tm_gmtoff};
}

void expectAgreement(const fs::path& folder) {
    const ScopedEnvironment chosen("TZDIR", folder.c_str());
    const auto names = namesIn(folder);
    EXPECT_GT(names.size(), 300);
    int wrong = 0;
    for (const std::string& name : names) {
        const ScopedEnvironment variable("TZ", (":" + name).c_str());
        ::tzset();
        const auto zone = timeZoneNamed(name);
        for (const auto& day : {2026y / 1 / 15, 2026y / 3 / 20, 2026y / 5 / 10, 2026y / 7 / 15, 2026y / 9 / 25,
                                2026y / 11 / 22, 1998y / 4 / 20, 2060y / 7 / 15}) {
            const Instant noon = sys_days{day} + 12h;
            const Seconds offset = offsetInLibrary(noon);
            if (!zone || zone->offset(noon) != offset || zone->whenShown(noon + offset) != noon ||
                currentTimeZone().offset(noon) != offset) {
                ADD_FAILURE() << name << " on " << formatIso8601(noon);
                ++wrong;
            }
        }
        ASSERT_LT(wrong, 20);
    }
    ::tzset();
}

TEST(TimeZone, AgreesWithTheSystemAboutEveryName) {
    if (!fs::exists(kFolder)) {
        GTEST_SKIP() << "this system has no zone files";
    }
    expectAgreement(kFolder);
}

TEST(TimeZone, ReadsFilesWhoseLastLineHasTheRule) {
    const TemporaryDirectory directory;
    const fs::path source = fs::path(kFolder) / "tzdata.zi";
    if (!fs::exists(source) || std::system(("PATH=$PATH:/usr/sbin zic -b slim -d " + (directory / "slim").string() +
                                            " " + source.string() + " 2>/dev/null")
                                               .c_str()) != 0) {
        GTEST_SKIP() << "this system has no zic";
    }
    expectAgreement(directory / "slim");
}

TEST(TimeZone, KnowsTheNamesOfTheDatabaseAlone) {
    const auto expectNames = [] {
        for (const char* name : {"Europe/London", "America/Argentina/Buenos_Aires", "UTC", "Etc/UTC", "Etc/GMT+5",
                                 "GMT", "Asia/Kathmandu", "Asia/Katmandu", "EST"}) {
            EXPECT_TRUE(timeZoneNamed(name)) << name;
        }
        for (const char* name : {"", "Mars/Base", "europe/london", "Europe/London ", "Europe", "AET", "PST", "IST",
                                 "CEST", "GMT+1", "GMT+01:00", "+02:00", "SystemV/EST5EDT", "Etc/Unknown",
                                 "US/Pacific-New", "Zürich", "../zoneinfo/UTC", "/usr/share/zoneinfo/UTC"}) {
            EXPECT_FALSE(timeZoneNamed(name)) << name;
        }
    };
    expectNames();
    const TemporaryDirectory empty;
    const ScopedEnvironment folder("TZDIR", empty.path().c_str());
    expectNames();  // by ICU's rules
    EXPECT_EQ(timeZoneNamed("Asia/Kathmandu")->offset(kSummer), 5h + 45min);
    EXPECT_EQ(timeZoneNamed("Europe/Berlin")->offset(kSummer), 2h);
    EXPECT_EQ(timeZoneNamed("Europe/Berlin")->offset(sys_days{1900y / 1 / 1}), 1h);
    // Where a system left out a name of old, its own file under the other name counts, not ICU.
    fs::create_directory(empty / "Asia");
    std::ofstream(empty / "Asia/Kolkata", std::ios::binary) << test::readAll("/usr/share/zoneinfo/Asia/Kathmandu");
    EXPECT_EQ(timeZoneNamed("Asia/Calcutta")->offset(kSummer), 5h + 45min);
}

TEST(TimeZone, FollowsTheVariable) {
    const std::string berlin = std::string(kFolder) + "/Europe/Berlin";
    const TemporaryDirectory directory;
    const fs::path copy = directory.write("copy", test::readAll(berlin));
    const struct {
        std::string value;
        Seconds winter;
        Seconds summer;
    } cases[] = {
        {"Asia/Kathmandu", 5h + 45min, 5h + 45min},
        {":Europe/Berlin", 1h, 2h},
        {":" + berlin, 1h, 2h},
        {copy.string(), 1h, 2h},
        {"/nowhere/zoneinfo/right/America/New_York", -5h, -4h},
        {"", 0h, 0h},
        {"nonsense", 0h, 0h},
        {"/nowhere", 0h, 0h},
        {"IST-5:30", 5h + 30min, 5h + 30min},
        {"<-03>3", -3h, -3h},
        {"AAA3BBB", -3h, -2h},
        {"CET-1CEST,M3.5.0,M10.5.0/3", 1h, 2h},
    };
    for (const auto& [value, winter, summer] : cases) {
        const ScopedEnvironment variable("TZ", value.c_str());
        EXPECT_EQ(currentTimeZone().offset(kWinter), winter) << value;
        EXPECT_EQ(currentTimeZone().offset(kSummer), summer) << value;
    }
}

TEST(TimeZone, FollowsTheSystemsFile) {
    const TemporaryDirectory directory;
    const fs::path file = directory / "localtime";
    EXPECT_EQ(timeZoneOfFile(file).offset(kSummer), 0h) << "missing";
    fs::create_symlink("/nowhere/zoneinfo/Asia/Kathmandu", file);
    EXPECT_EQ(timeZoneOfFile(file).offset(kSummer), 5h + 45min) << "a link that leads nowhere still has a name";
    fs::remove(file);
    fs::create_symlink(std::string(kFolder) + "/Asia/Tokyo", file);
    EXPECT_EQ(timeZoneOfFile(file).offset(kSummer), 9h);
    fs::remove(file);
    directory.write("localtime", test::readAll(std::string(kFolder) + "/Europe/Berlin"));
    EXPECT_EQ(timeZoneOfFile(file).offset(kSummer), 2h) << "a copy";
    directory.write("localtime", "TZif2 damaged");
    EXPECT_EQ(timeZoneOfFile(file).offset(kSummer), 0h);
}

TEST(ZoneFile, SkipsWhatIsDamaged) {
    const std::string whole = test::readAll(std::string(kFolder) + "/Europe/Berlin");
    ASSERT_TRUE(readZoneFile(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(readZoneFile(std::string_view(whole).substr(0, length))) << length;
    }
    // Whatever a byte says, an answer comes, and it is one that a clock could show.
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const char value : {'\0', '\x7f', '\xff'}) {
            std::string damaged = whole;
            damaged[i] = value;
            if (const auto zone = readZoneFile(damaged)) {
                EXPECT_LE(std::abs(zone->offset(kSummer) / 1h), 26) << i;
            }
        }
    }
}

TEST(ZoneRule, ReadsEveryForm) {
    const Instant dayOfLeapYear = sys_days{2028y / 2 / 29};
    const struct {
        const char* rule;
        Instant change;  ///< The summer time's begin or end.
        Seconds before;
        Seconds after;
    } cases[] = {
        {"AAA0BBB,J60,J365", sys_days{2028y / 3 / 1} + 2h, 0h, 1h},
        {"AAA0BBB,59,364", dayOfLeapYear + 2h, 0h, 1h},
        {"<-02>2<-01>,M3.5.0/-1,M10.5.0/0", sys_days{2026y / 3 / 29} + 1h, -2h, -1h},
        {"IST-1GMT0,M10.5.0,M3.5.0/1", sys_days{2026y / 10 / 25} + 1h, 1h, 0h},
        {"AEST-10AEDT,M10.1.0,M4.1.0/3", sys_days{2026y / 4 / 4} + 16h, 11h, 10h},
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", sys_days{2026y / 4 / 4} + 15h, 11h, 10h + 30min},
        {"EET-2EEST,M3.4.4/50,M10.4.4/50", sys_days{2026y / 3 / 28}, 2h, 3h},
        {"AAA5BBB,0/0,J365/25", sys_days{2027y / 1 / 1} + 5h, -4h, -4h},
    };
    for (const auto& c : cases) {
        const auto zone = readZoneRule(c.rule);
        ASSERT_TRUE(zone) << c.rule;
        EXPECT_EQ(zone->offset(c.change - 1s), c.before) << c.rule;
        EXPECT_EQ(zone->offset(c.change), c.after) << c.rule;
    }
    for (const char* rule :
         {"", "CET", "CE1", "<CET1", "CET-25", "CET-1:60", "CET1CE", "CET-1CEST,", "CET-1CEST,M3.5.0",
          "CET-1CEST,M13.5.0,M10.5.0", "CET-1CEST,M3.6.0,M10.5.0", "CET-1CEST,M3.5.7,M10.5.0", "CET-1CEST,J0,J365",
          "CET-1CEST,J1,366", "CET-1CEST,M3.5.0,M10.5.0/168", "CET-1CEST,M3.5.0,M10.5.0 ", "CET99999999999"}) {
        EXPECT_FALSE(readZoneRule(rule)) << rule;
    }
}

TEST(Calendar, KeepsToItsYears) {
    const Calendar calendar(readZoneRule("CET-1CEST,M3.5.0,M10.5.0/3").value());
    for (const double wild : {1e300, -1e300, 1e12, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_FALSE(calendar.wallTime(instantSince1970(wild))) << wild;
        EXPECT_FALSE(calendar.addDays(instantSince1970(wild), 1)) << wild;
    }
    EXPECT_FALSE(calendar.instant({.year = 2'000'000'000, .month = 2'000'000'000}));
    EXPECT_EQ(calendar.instant({.year = 2026, .month = -1, .day = 32, .hour = 25}), sys_days{2025y / 12 / 3});
    EXPECT_EQ(calendar.addDays(sys_days{2026y / 3 / 28} + 12h + 0.5s, 1), sys_days{2026y / 3 / 29} + 11h + 0.5s);
}

}  // namespace
}  // namespace vorn
