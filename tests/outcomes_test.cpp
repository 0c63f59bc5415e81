#include "core/analysis/outcomes.hpp"

#include <fstream>

#include <gmock/gmock.h>

#include "tests/support/readings.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

using namespace test;
using Event = Outcome::Event;

HistorySample sample(double used, Seconds after, Seconds resetsIn, const char* key = "session") {
    return {.kindKey = key, .usedPercent = used, .resetsAt = kNow + resetsIn, .observedAt = kNow + after};
}

std::vector<Event> eventsOf(const std::vector<HistorySample>& history, Seconds after) {
    std::vector<Event> events;
    for (const Outcome& outcome : VornEngine::outcomes(history, kNow + after)) {
        events.push_back(outcome.event);
    }
    return events;
}

TEST(Outcomes, FollowFromTheReadings) {
    using testing::ElementsAre;
    const std::vector day{sample(40, 0s, 3h),      sample(100, 1h, 3h), sample(100, 2h, 3h + 60s),
                          sample(5, 3h + 60s, 8h), sample(30, 4h, 8h),  sample(31, 5h, 9h),
                          sample(12, 6h, 9h),      sample(14, 7h, 12h), sample(1, 8h, 13h)};
    EXPECT_THAT(eventsOf(day, 20h), ElementsAre(Event::reachedLimit, Event::landed, Event::moved, Event::resetEarly,
                                                Event::moved, Event::resetEarly, Event::landed));
    const auto told = VornEngine::outcomes(day, kNow + 20h);
    EXPECT_EQ(told[0].at, kNow + 1h);
    EXPECT_EQ(told[1], (Outcome{.event = Event::landed,
                                .kind = WindowKind::session(),
                                .at = kNow + 3h + 60s,
                                .resetsAt = kNow + 3h + 60s,
                                .usedPercent = 100,
                                .readAt = kNow + 2h}));
    EXPECT_EQ(told[3].usedPercent, 31) << "before it fell";
    EXPECT_THAT(eventsOf(day, 2h), ElementsAre(Event::reachedLimit)) << "nothing that is not known yet";
}

TEST(Outcomes, KeepWindowsApartAndTheirNamesTogether) {
    const std::vector history{sample(40, 0s, 50h, "week:Sonnet only"), sample(60, 1h, 3h),
                              sample(41, 2h, 50h, "week:Sonnet")};
    const auto told = VornEngine::outcomes(history, kNow + 60h);
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[0].kind, WindowKind::session());
    EXPECT_EQ(told[1].kind, WindowKind::weekModel("Sonnet"));
    EXPECT_EQ(told[1].usedPercent, 41);
}

TEST(Outcomes, AreKeptOnceForAYear) {
    const TemporaryDirectory directory;
    const OutcomeStore store(directory.path() / "outcomes.jsonl");
    const Outcome read{.event = Event::reachedLimit,
                       .kind = WindowKind::week(),
                       .at = kNow + 600s,
                       .resetsAt = kNow + 50h,
                       .usedPercent = 100};
    Outcome refused = read;
    refused.at = kNow + 10s;
    refused.resetsAt = kNow + 50h + 100s;
    refused.origin = Outcome::Origin::refusedTurn;
    EXPECT_TRUE(store.add(std::vector{read}, kNow));
    EXPECT_TRUE(store.add(std::vector{read, refused}, kNow));
    EXPECT_THAT(store.load(), testing::ElementsAre(refused)) << "the exact moment";
    std::ofstream(directory.path() / "outcomes.jsonl", std::ios::app) << "{\"e\":\"landed\"\n\n[]\nnonsense";
    Outcome landed{.event = Event::landed, .kind = WindowKind::week(), .at = kNow + 50h, .usedPercent = 100};
    EXPECT_TRUE(store.add(std::vector{landed}, kNow + 51h));
    EXPECT_THAT(store.load(), testing::ElementsAre(refused, landed));
    landed.at = kNow + 400 * 24h;
    EXPECT_TRUE(store.add(std::vector{landed}, kNow + 400 * 24h));
    EXPECT_THAT(store.load(), testing::ElementsAre(landed));
    EXPECT_FALSE(OutcomeStore("/dev/null/outcomes.jsonl").add(std::vector{read}, kNow));
}

}  // namespace
}  // namespace vorn
