#include "core/analysis/forecast/learn_rhythm.hpp"

#include <gtest/gtest.h>

#include "core/analysis/forecast/usual_week.hpp"
#include "tests/support/lived_weeks.hpp"

namespace vorn {
namespace {

using namespace test;
using VornEngine::learn;
using VornEngine::UsualWeek;

const ZoneOffsets kUtc;
constexpr Seconds kWeek = 168h;

Rhythm learnt(const Life& life, Instant now, const ZoneOffsets& zone = kUtc, Rhythm rhythm = {}) {
    const ActivitySummary activity = life.activity();
    return learn(std::move(rhythm), {.history = life.readings, .activity = &activity, .zone = zone, .now = now});
}

Life lived(const Habits& habits, Seconds length, const ZoneOffsets& zone = kUtc) {
    Life life;
    live(life, habits, zone, kFirstDay, kFirstDay + length);
    return life;
}

double pointsAt(const Rhythm& rhythm, int day, int hour) {
    return rhythm.hours.at(static_cast<std::size_t>(day * 24 + hour)).points;
}

TEST(LearnRhythm, IsTheSameHoweverOftenItIsDone) {
    Life life = lived({}, 3 * kWeek);
    // Activity from before the first reading, so that there is some to take in.
    life.readings.erase(life.readings.begin(), life.readings.begin() + 1500);
    const Rhythm atOnce = learnt(life, kFirstDay + 3 * kWeek);
    Rhythm often;
    for (Seconds step = 0h; step <= 3 * kWeek; step += 7h) {
        often = learnt(life, kFirstDay + step, kUtc, std::move(often));
    }
    often = learnt(life, kFirstDay + 3 * kWeek, kUtc, std::move(often));
    EXPECT_GT(atOnce.weightBefore, 0);
    EXPECT_EQ(often, atOnce);
    EXPECT_EQ(learnt(life, kFirstDay + 3 * kWeek, kUtc, often), often) << "nothing new";
}

TEST(LearnRhythm, FollowsTheWallClock) {
    // Clocks go forward on 29 March 2026.
    const ZoneOffsets berlin({{kFirstDay - 24h, 1h}, {std::chrono::sys_days{2026y / 3 / 29} + 1h, 2h}});
    const Rhythm rhythm = learnt(lived({}, 7 * kWeek, berlin), kFirstDay + 7 * kWeek, berlin);
    for (int day = 0; day < 7; ++day) {
        for (const int hour : {8, 9, 16, 17}) {
            const bool isWork = day < 5 && hour >= 9 && hour < 17;
            EXPECT_EQ(pointsAt(rhythm, day, hour) > 5, isWork) << day << ", " << hour << " o'clock";
        }
    }
}

TEST(LearnRhythm, LearnsANewJobInTwoWeeks) {
    Life life = lived({.firstHour = 9, .lastHour = 12}, 20 * kWeek);
    const Instant change = kFirstDay + 20 * kWeek;
    live(life, {.firstHour = 18, .lastHour = 21}, kUtc, change, change + 2 * kWeek);
    const Instant now = change + 2 * kWeek;
    const auto expected = [&](const Rhythm& rhythm, int hour) {
        return UsualWeek::of(rhythm, kUtc, now).expected(kUtc, now + hour * 1h, now + (hour + 3) * 1h);
    };
    const Rhythm before = learnt(life, change);
    EXPECT_GT(expected(before, 9), 4 * expected(before, 18));
    const Rhythm after = learnt(life, now, kUtc, before);
    EXPECT_GT(expected(after, 18), 1.5) << "of six points";
    EXPECT_LT(expected(after, 9), 4.2) << "of six points";
}

TEST(LearnRhythm, DoesNotTakeBeingShutOutForRest) {
    // The limit is reached on Wednesday, so nobody can work on Friday.
    const Rhythm rhythm = learnt(lived({.pointsPerHour = 5}, 4 * kWeek), kFirstDay + 4 * kWeek);
    const auto& friday = rhythm.hours.at(4 * 24 + 10);
    EXPECT_EQ(friday.points, 0);
    EXPECT_EQ(friday.seen, 0);
    EXPECT_GT(rhythm.hours.at(6 * 24 + 10).seen, -1);
    EXPECT_GT(rhythm.fullWeeks, 2);
    const UsualWeek usual = UsualWeek::of(rhythm, kUtc, kFirstDay + 4 * kWeek);
    EXPECT_GT(usual.expected(kUtc, kFirstDay + 4 * 24h, kFirstDay + 5 * 24h), 5) << "as on the days before";
}

TEST(LearnRhythm, TellsUseElsewhereFromUseHere) {
    const Rhythm here = learnt(lived({}, kWeek), kFirstDay + kWeek);
    EXPECT_GT(here.exchange.localPoints, 500);
    EXPECT_LT(here.exchange.elsewherePoints, 10);
    const Rhythm elsewhere = learnt(lived({.isHere = false}, kWeek), kFirstDay + kWeek);
    EXPECT_EQ(elsewhere.exchange.localPoints, 0);
    EXPECT_GT(elsewhere.exchange.elsewherePoints, 500);
}

TEST(LearnRhythm, TakesInActivityFromBeforeTheFirstReading) {
    Life life = lived({.firstHour = 19, .lastHour = 22}, 4 * kWeek + 24h);
    const Instant install = kFirstDay + 4 * kWeek + 12h;
    std::erase_if(life.readings, [&](const HistorySample& sample) { return sample.observedAt < install; });
    const Rhythm rhythm = learnt(life, install + 10min);
    const UsualWeek usual = UsualWeek::of(rhythm, kUtc, install);
    EXPECT_NEAR(usual.weeksKnown, 4, 0.3);
    EXPECT_GT(usual.pointsPerHour.at(2 * 24 + 20), 5 * usual.pointsPerHour.at(2 * 24 + 10));
}

TEST(LearnRhythm, SurvivesAClockThatWasAheadAndALongAbsence) {
    Life ahead = lived({}, 2 * kWeek);
    const Rhythm early = learnt(ahead, kFirstDay + 2 * kWeek);
    Life life = lived({}, kWeek);
    const Rhythm back = learnt(life, kFirstDay + kWeek, kUtc, early);
    EXPECT_LE(*back.learntUpTo, kFirstDay + kWeek);
    live(life, {}, kUtc, kFirstDay + kWeek, kFirstDay + kWeek + 24h);
    EXPECT_GT(learnt(life, kFirstDay + kWeek + 24h, kUtc, back).exchange.sessionPoints,
              back.exchange.sessionPoints + 50);

    Life later;
    live(later, {}, kUtc, kFirstDay + 60 * kWeek, kFirstDay + 60 * kWeek + 24h);
    EXPECT_EQ(learnt(later, kFirstDay + 60 * kWeek + 24h, kUtc, early), learnt(later, kFirstDay + 60 * kWeek + 24h))
        << "what is older than a year is forgotten";
}

TEST(LearnRhythm, StaysSmall) {
    Life life;
    Rhythm rhythm;
    for (int week = 0; week < 60; ++week) {
        const Instant from = kFirstDay + week * kWeek;
        live(life, {.firstHour = 0, .lastHour = 24, .days = 7, .pointsPerHour = 0.5}, kUtc, from, from + kWeek);
        for (int model = 0; model < 20; ++model) {
            life.readings.push_back({"week:M" + std::to_string(model), 5.0 * week, life.weekReset, from + kWeek - 1s});
        }
        rhythm = learnt(life, from + kWeek, kUtc, std::move(rhythm));
        life.readings.clear();
        life.events.clear();
    }
    EXPECT_LE(rhythm.days.size(), Rhythm::kMostDays);
    EXPECT_LE(rhythm.recent.size(), Rhythm::kMostRecent);
    EXPECT_LE(rhythm.models.size(), Rhythm::kMostModels);
    EXPECT_LT(encodeRhythm(rhythm).size(), 16'000U);
}

}  // namespace
}  // namespace vorn
