#include "core/data/usage_state.hpp"

#include <gmock/gmock.h>

namespace vorn {
namespace {

using namespace std::chrono_literals;

const Instant kStart = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + 12h;
const Instant kReset = kStart + 4h;

UsageWindow reading(double usedPercent, Seconds after, std::optional<Instant> resetsAt = kReset) {
    return {.kind = WindowKind::session(),
            .usedPercent = usedPercent,
            .resetsAt = resetsAt,
            .observedAt = kStart + after,
            .source = DataSource::usageCommand};
}

void merge(UsageState& state, std::vector<UsageWindow> readings) {
    state.merge(readings);
}

/// What each reading of a sequence leaves as the believed percentage.
struct Step {
    UsageWindow reading;
    double believed;
};

void expectSequence(const char* name, const std::vector<Step>& steps, bool announced = false) {
    SCOPED_TRACE(name);
    UsageState state;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        merge(state, {steps[i].reading});
        if (announced && i == 0) {
            state.expectReset(std::vector{WindowKind::session()});
        }
        EXPECT_EQ(state.windows().at(WindowKind::session()).usedPercent, steps[i].believed) << "step " << i;
    }
}

TEST(UsageStateMerge, holdsFallsUntilTheyAreConfirmed) {
    expectSequence("a single low reading is an outlier",
                   {{reading(40, 0s), 40}, {reading(5, 60s), 40}, {reading(41, 120s), 41}});
    expectSequence("59 s are too soon, and count anew", {{reading(40, 0s), 40},
                                                         {reading(5, 60s), 40},
                                                         {reading(5, 119s), 40},
                                                         {reading(5, 178s), 40},
                                                         {reading(5, 238s), 5}});
    expectSequence("3 points below the first low reading still confirm",
                   {{reading(40, 0s), 40}, {reading(8, 60s), 40}, {reading(5, 120s), 5}});
    expectSequence("more than that begins again",
                   {{reading(40, 0s), 40}, {reading(8, 60s), 40}, {reading(4.9, 120s), 40}, {reading(4.9, 180s), 4.9}});
    expectSequence("a fall of 10 is one", {{reading(40, 0s), 40}, {reading(30, 60s), 40}, {reading(30, 120s), 30}});
    expectSequence("a fall of 9.99 never is",
                   {{reading(40, 0s), 40}, {reading(30.01, 60s), 40}, {reading(30.01, 120s), 40}});
    expectSequence("a rise forgets the low reading",
                   {{reading(40, 0s), 40}, {reading(5, 60s), 40}, {reading(40, 90s), 40}, {reading(5, 150s), 40}});
}

TEST(UsageStateMerge, believesAnAnnouncedResetOnce) {
    expectSequence("at once", {{reading(40, 0s), 40}, {reading(2, 10s), 2}}, true);
    expectSequence("small falls do not use it up",
                   {{reading(40, 0s), 40}, {reading(35, 10s), 40}, {reading(2, 20s), 2}}, true);
    expectSequence("only one fall", {{reading(40, 0s), 40}, {reading(20, 10s), 20}, {reading(2, 20s), 20}}, true);
    expectSequence("a new instance uses it up",
                   {{reading(40, 0s), 40}, {reading(50, 10s, kReset + 5h), 50}, {reading(2, 20s, kReset + 5h), 50}},
                   true);
}

TEST(UsageStateMerge, takesNewInstancesAtFaceValue) {
    expectSequence("reset moved by 300 s", {{reading(40, 0s), 40}, {reading(3, 10s, kReset + 300s), 3}});
    expectSequence("reset moved by 299 s", {{reading(40, 0s), 40}, {reading(3, 10s, kReset + 299s), 40}});
    expectSequence("reset appeared", {{reading(40, 0s, std::nullopt), 40}, {reading(3, 10s), 3}});
    expectSequence("reset vanished", {{reading(40, 0s), 40}, {reading(3, 10s, std::nullopt), 3}});
    expectSequence("a low reading of the old instance confirms nothing in the new one",
                   {{reading(40, 0s), 40},
                    {reading(5, 60s), 40},
                    {reading(40, 90s, kReset + 5h), 40},
                    {reading(5, 150s, kReset + 5h), 40}});
}

TEST(UsageStateMerge, ignoresOlderReadingsAndKeepsTheNewerStamp) {
    UsageState state;
    merge(state, {reading(40, 60s), reading(50, 59s)});
    EXPECT_EQ(state.windows().at(WindowKind::session()), reading(40, 60s));
    merge(state, {reading(41, 60s)});
    EXPECT_EQ(state.windows().at(WindowKind::session()).usedPercent, 41);

    UsageWindow stale = reading(35, 90s, kReset + 20s);
    stale.source = DataSource::statusLine;
    merge(state, {stale});
    UsageWindow held = stale;
    held.usedPercent = 41;
    EXPECT_EQ(state.windows().at(WindowKind::session()), held);
}

TEST(UsageStateCurrent, rollsOverAtTheResetAndSortsByKind) {
    UsageState state;
    const UsageWindow opus{WindowKind::weekModel("Opus"), 10, kReset + 1h, kStart};
    const UsageWindow week{WindowKind::week(), 10, kReset + 1h, kStart};
    merge(state, {opus, week, reading(40, 0s)});
    const auto kinds = [&](Instant now) {
        std::string seen;
        for (const UsageWindow& window : state.current(now)) {
            seen += window.kind.key() + (window.resetsAt ? " " : " over ");
        }
        return seen;
    };
    EXPECT_EQ(kinds(kReset - 1s), "session week week:Opus ");
    EXPECT_EQ(kinds(kReset), "session over week week:Opus ");
    EXPECT_EQ(state.current(kReset).front().usedPercent, 0);
    EXPECT_EQ(state.windows().at(WindowKind::session()).usedPercent, 40);
}

TEST(UsageState, tellsWhenItLastHeardFromEachSource) {
    UsageState state;
    EXPECT_EQ(state.lastObservedAt(), std::nullopt);
    UsageWindow week{WindowKind::week(), 10, kReset, kStart + 90s, DataSource::statusLine};
    merge(state, {reading(40, 120s), week});
    EXPECT_EQ(state.lastObservedAt(), kStart + 120s);
    EXPECT_EQ(state.lastObserved(DataSource::statusLine), kStart + 90s);
}

TEST(UsageState, keepsInsightsUntilNewOnesCome) {
    UsageState state;
    state.setInsights(UsageInsights{.periods = {{.label = "Last 24h"}}, .observedAt = kStart});
    state.setInsights(std::nullopt);
    ASSERT_TRUE(state.insights());
    state.setInsights(UsageInsights{.periods = {}, .observedAt = kStart + 1h});
    EXPECT_TRUE(state.insights()->periods.empty());
}

}  // namespace
}  // namespace vorn
