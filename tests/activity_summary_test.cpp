#include "core/data/activity/activity_summary.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>

namespace vorn {

void PrintTo(const ActivitySummary::Slice& slice, std::ostream* out) {
    *out << slice.name << ' ' << slice.weight << " (" << slice.share << ')';
}

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

const Instant kTen = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + 10h;
const Instant kForever{Seconds{std::numeric_limits<double>::infinity()}};

/// An event of the weight `tokens`.
ActivityEvent at(Seconds afterTen, std::int64_t tokens, const char* cwd = "/p", const char* model = "claude-sonnet-5") {
    return {.timestamp = kTen + afterTen, .model = model, .cwd = cwd, .tokens = {.input = tokens}};
}

std::vector<double> weights(const std::vector<ActivitySummary::Bucket>& buckets) {
    std::vector<double> out;
    std::ranges::transform(buckets, std::back_inserter(out), &ActivitySummary::Bucket::weight);
    return out;
}

TEST(ActivitySummary, withoutEventsAnswersEverythingWithNothing) {
    for (const ActivitySummary& none : {ActivitySummary{}, ActivitySummary{{}}}) {
        EXPECT_FALSE(none.lastEventAt());
        EXPECT_EQ(none.weight(kTen, kForever), 0);
        EXPECT_TRUE(none.events(kTen, kForever).empty());
        EXPECT_THAT(weights(none.timeline(kTen, kTen + 25min, 10min)), ElementsAre(0, 0, 0));
        EXPECT_TRUE(none.projects(kTen, 3).empty());
        EXPECT_TRUE(none.models(kTen, 3).empty());
        EXPECT_EQ(none, ActivitySummary{});
    }
}

TEST(ActivitySummary, sumsHalfOpenIntervals) {
    const ActivitySummary summary({at(20min, 4), at(0s, 1, "/a"), at(10min, 2), at(0s, 8, "/b")});
    EXPECT_EQ(summary.lastEventAt(), kTen + 20min);
    EXPECT_EQ(summary.events()[0].cwd, "/a");  // equal times keep their order
    EXPECT_EQ(summary.events()[1].cwd, "/b");
    const std::tuple<Seconds, Seconds, double, std::size_t> cases[] = {
        {-1h, 1h, 15, 4},     {0s, 20min, 11, 3}, {0s, 20min + 1ms, 15, 4}, {1ms, 20min, 2, 1},   {21min, 1h, 0, 0},
        {20min, 20min, 0, 0}, {20min, 0s, 0, 0},  {-2h, -1h, 0, 0},         {11min, 19min, 0, 0},
    };
    for (const auto& [since, until, weight, count] : cases) {
        SCOPED_TRACE(testing::Message() << since.count() << ".." << until.count());
        EXPECT_EQ(summary.weight(kTen + since, kTen + until), weight);
        EXPECT_EQ(summary.events(kTen + since, kTen + until).size(), count);
    }
}

TEST(ActivitySummary, sumsOfThirdsAreExactWhateverCameBefore) {
    std::vector<ActivityEvent> events;
    for (int i = 0; i < 3000; ++i) {
        events.push_back(at(Seconds(i), 1'000'000'000 + i, "/p", i % 2 == 0 ? "opus" : "haiku"));
    }
    events.push_back(at(1h, 1, "/p", "haiku"));
    const ActivitySummary summary(events);
    EXPECT_EQ(summary.weight(kTen + 1h, kForever), events.back().weight());
    EXPECT_EQ(summary.weight(kTen + 3000s, kTen + 1h), 0);
}

TEST(ActivitySummary, drawsOneBucketPerInterval) {
    const ActivitySummary summary({at(0s, 1), at(599s, 2), at(600s, 4), at(24min, 8, "/p", "opus"), at(25min, 16)});
    const auto buckets = summary.timeline(kTen, kTen + 25min, 10min);
    EXPECT_THAT(weights(buckets), ElementsAre(3, 4, 8 * 5 / 3.0));  // the event at the end is outside
    EXPECT_EQ(buckets[2].start, kTen + 20min);
    EXPECT_THAT(weights(summary.timeline(kTen + 1s, kTen + 2min, 1min)), ElementsAre(0, 0));
    const double nan = std::nan("");
    const std::tuple<Instant, Instant, Seconds> senseless[] = {{kTen, kTen, 10min},
                                                               {kTen, kTen - 1s, 10min},
                                                               {kTen, kTen + 1h, 0s},
                                                               {kTen, kTen + 1h, -1s},
                                                               {kTen, kTen + 1h, Seconds{nan}},
                                                               {Instant{Seconds{nan}}, kTen, 1s},
                                                               {kTen, kForever, 1h},
                                                               {-kForever.time_since_epoch() + Instant{}, kTen, 1h},
                                                               {kTen, kTen + 1h, 1us}};  // 3.6 billion buckets
    for (const auto& [since, until, width] : senseless) {
        EXPECT_TRUE(summary.timeline(since, until, width).empty());
    }
}

TEST(ActivitySummary, ranksProjectsAndSumsUpTheRest) {
    const ActivitySummary summary({at(-1s, 1000, "/old"), at(0s, 10, "/w/a"), at(1s, 30, "/w/b/"), at(2s, 25, "/w/c"),
                                   at(3s, 5, "/w/d"), at(4s, 20, "/v/b"), at(5s, 10, "")});
    using Slice = ActivitySummary::Slice;
    EXPECT_THAT(summary.projects(kTen, 3), ElementsAre(Slice{"b", 50, .5}, Slice{"c", 25, .25},
                                                       Slice{"Unknown", 10, .1}, Slice{"Other", 15, .15}));
    EXPECT_EQ(summary.projects(kTen, 5).size(), 5U);  // exactly all: nothing left over
    EXPECT_THAT(summary.projects(kTen, 0), ElementsAre(Slice{"Other", 100, 1}));
    EXPECT_TRUE(summary.projects(kTen + 1h, 3).empty());
    EXPECT_TRUE(ActivitySummary({at(0s, 0)}).projects(kTen, 3).empty());
}

TEST(ActivitySummary, ranksModelFamilies) {
    const ActivitySummary summary({at(0s, 30, "/a", "claude-sonnet-5"), at(1s, 90, "/a", "claude-haiku-4-5"),
                                   at(2s, 24, "/b", "us-anthropic-claude-opus-4"),
                                   at(3s, 12, "/b", "claude-opus-5-5")});
    using Slice = ActivitySummary::Slice;
    EXPECT_THAT(summary.models(kTen, 1), ElementsAre(Slice{"Opus", 60, .5}, Slice{"Other", 60, .5}));
    EXPECT_THAT(summary.models(kTen, 9),
                ElementsAre(Slice{"Opus", 60, .5}, Slice{"Haiku", 30, .25}, Slice{"Sonnet", 30, .25}));
}

TEST(ActivitySummary, namesTheFamilyOfAModel) {
    const std::pair<const char*, const char*> cases[] = {{"claude-opus-5-5", "Opus"},
                                                         {"claude-3-5-haiku-20241022", "Haiku"},
                                                         {"us.anthropic.claude-Haiku-4-5", "Us.anthropic.claude"},
                                                         {"claude-v2", "V2"},
                                                         {"unknown", "Unknown"},
                                                         {"Claude-4-5", "Claude-4-5"},
                                                         {"", ""},
                                                         {"claude--fable", "Fable"}};
    for (const auto& [model, family] : cases) {
        EXPECT_EQ(ActivitySummary::modelFamily(model), family) << model;
    }
}

}  // namespace
}  // namespace vorn
