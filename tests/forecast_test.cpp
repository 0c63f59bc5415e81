#include "core/analysis/forecast/forecast.hpp"

#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "core/analysis/forecast/learn_rhythm.hpp"
#include "tests/support/lived_weeks.hpp"

namespace vorn {
namespace {

using namespace test;

constexpr Seconds kWeek = 168h;
const ZoneOffsets kUtc;

/// Everything that a forecast is made from.
struct Known {
    Life life;
    ActivitySummary activity;
    Rhythm rhythm;
    ZoneOffsets zone;
    Instant now;
    bool hasActivity = true;

    [[nodiscard]] std::optional<Forecast> forecast(const UsageWindow& window) const {
        return VornEngine::forecast(window, {.history = life.readings,
                                             .activity = hasActivity ? &activity : nullptr,
                                             .rhythm = rhythm,
                                             .zone = zone,
                                             .now = now});
    }
    [[nodiscard]] Forecast forecast(const WindowKind& kind) const { return forecast(newest(life, kind)).value(); }
};

Known after(Life life, Instant now, ZoneOffsets zone = kUtc) {
    Known known{.life = std::move(life), .zone = std::move(zone), .now = now};
    known.activity = known.life.activity();
    known.rhythm = VornEngine::learn(
        {}, {.history = known.life.readings, .activity = &known.activity, .zone = known.zone, .now = now});
    return known;
}

Known afterWorking(const Habits& habits, Seconds length) {
    Life life;
    live(life, habits, kUtc, kFirstDay, kFirstDay + length);
    return after(std::move(life), kFirstDay + length);
}

const WindowKind kKinds[] = {WindowKind::session(), WindowKind::week(), WindowKind::weekModel("Opus")};

TEST(Forecast, IsSoundWhateverTheReading) {
    const Known worker = afterWorking({}, 3 * kWeek + 36h);
    const Known nobody{.now = worker.now};
    std::mt19937 random(5);
    const auto upTo = [&](int most) {
        return static_cast<double>(random() % static_cast<unsigned>(most + 1));
    };
    for (int i = 0; i < 3000; ++i) {
        Known known = i % 3 == 0 ? nobody : worker;
        known.hasActivity = i % 2 == 0;
        const UsageWindow window{.kind = kKinds[i % 3],
                                 .usedPercent = upTo(1300) / 10 - 5,
                                 .resetsAt = known.now + 1s + upTo(4000) * 216s,
                                 .observedAt = known.now - upTo(100) * 300s + 600s};
        SCOPED_TRACE(testing::Message() << testing::PrintToString(window));
        const Forecast forecast = known.forecast(window).value();
        ASSERT_TRUE(forecast.pHit >= 0 && forecast.pHit <= 1) << testing::PrintToString(forecast);
        ASSERT_GE(forecast.p10, window.usedPercent);
        ASSERT_LE(forecast.p10, forecast.p50);
        ASSERT_LE(forecast.p50, forecast.p90);
        ASSERT_TRUE(std::isfinite(forecast.p90));
        ASSERT_EQ(forecast.hitAt.has_value(), forecast.pHit >= 0.5);
        ASSERT_EQ(forecast.pHit >= 0.5, forecast.p50 >= 100 - 1e-9) << "the chance and the landing agree";
        if (forecast.hitAt) {
            ASSERT_TRUE(*forecast.hitAt >= known.now && *forecast.hitAt <= *window.resetsAt);
        }
    }
}

TEST(Forecast, IsEmptyWhereThereIsNothingToForecast) {
    const Known known = afterWorking({}, 36h);
    const UsageWindow good = newest(known.life, WindowKind::week());
    const double nan = std::numeric_limits<double>::quiet_NaN();
    UsageWindow window = good;
    window.resetsAt.reset();
    EXPECT_FALSE(known.forecast(window)) << "no reset";
    window.resetsAt = known.now;
    EXPECT_FALSE(known.forecast(window)) << "reset passed";
    window.resetsAt = Instant{Seconds{nan}};
    EXPECT_FALSE(known.forecast(window)) << "reset that is no number";
    window.resetsAt = Instant{Seconds{1e300}};
    EXPECT_FALSE(known.forecast(window)) << "reset beyond all time";
    window = good;
    window.usedPercent = nan;
    EXPECT_FALSE(known.forecast(window)) << "reading that is no number";
    window.usedPercent = 100;
    const Forecast full = known.forecast(window).value();
    EXPECT_EQ(full.pHit, 1) << "a limit that is reached is certain";
    EXPECT_EQ(full.hitAt, known.now);
}

TEST(Forecast, KnowsNothingOfWhatLiesAhead) {
    Life life;
    live(life, {}, kUtc, kFirstDay, kFirstDay + 2 * kWeek + 60h);
    const Instant now = kFirstDay + 2 * kWeek + 60h;
    const Known cut = after(life, now);
    live(life, {.pointsPerHour = 8}, kUtc, now, now + 48h);
    const Known whole = after(life, now);
    EXPECT_EQ(whole.rhythm, cut.rhythm);
    for (const WindowKind& kind : {WindowKind::session(), WindowKind::week()}) {
        EXPECT_EQ(whole.forecast(newest(cut.life, kind)), cut.forecast(newest(cut.life, kind))) << kind.key();
    }
}

/// The same life somewhere else: everything that many hours earlier or later.
Known elsewhere(Life life, Seconds offset, Instant now) {
    for (auto& sample : life.readings) {
        sample.observedAt -= offset;
        sample.resetsAt = *sample.resetsAt - offset;
    }
    for (auto& event : life.events) {
        event.timestamp -= offset;
    }
    return after(std::move(life), now - offset, ZoneOffsets({{Instant{}, offset}}));
}

TEST(Forecast, IsTheSameInEveryZone) {
    Life life;
    live(life, {}, kUtc, kFirstDay, kFirstDay + 2 * kWeek + 60h);
    const Instant now = kFirstDay + 2 * kWeek + 60h;
    const Known here = after(life, now);
    for (const Seconds offset : {Seconds(-11h), Seconds(5h + 45min), Seconds(14h)}) {
        const Known there = elsewhere(life, offset, now);
        for (const WindowKind& kind : {WindowKind::session(), WindowKind::week()}) {
            Forecast expected = here.forecast(kind);
            if (expected.hitAt) {
                *expected.hitAt -= offset;
            }
            EXPECT_EQ(there.forecast(kind), expected) << kind.key() << ", " << offset / 1h << " h";
        }
    }
}

TEST(Forecast, KeepsToTheWallClockWhenItChanges) {
    // Work ends at 17 o'clock, which is 16 o'clock UTC before the change and 15 o'clock after it.
    const Instant change = std::chrono::sys_days{2026y / 3 / 29} + 1h;
    const ZoneOffsets berlin({{kFirstDay - 24h, 1h}, {change, 2h}});
    const auto at = [&](Instant now) {
        Life life;
        live(life, {}, berlin, kFirstDay, now);
        return after(std::move(life), now, berlin).forecast(WindowKind::week());
    };
    // Mondays at 14:30 local time, with one week of habits more.
    const Forecast before = at(change - 6 * 24h + 12h + 30min);
    const Forecast afterwards = at(change + 1 * 24h + 11h + 30min);
    EXPECT_NEAR(afterwards.p50, before.p50, 4);
    EXPECT_NEAR(afterwards.pHit, before.pHit, 0.08);
}

TEST(Forecast, GrowsWithWhatIsUsedAndShrinksWithTheTimeLeft) {
    const Known known = afterWorking({}, 3 * kWeek + 60h);
    for (const WindowKind& kind : kKinds) {
        SCOPED_TRACE(kind.key());
        const Seconds length = kind.length();
        const auto with = [&](double used, double left) {
            return known
                .forecast({.kind = kind,
                           .usedPercent = used,
                           .resetsAt = known.now + length * left,
                           .observedAt = known.now - 10s})
                .value();
        };
        EXPECT_LT(with(5, 0.5).pHit, with(50, 0.5).pHit);
        EXPECT_LT(with(50, 0.5).pHit, with(95, 0.5).pHit);
        EXPECT_GT(with(98, 0.5).pHit, 0.5);
        EXPECT_LT(with(50, 0.02).pHit, 0.1);
        EXPECT_LT(with(50, 0.02).p90 - with(50, 0.02).p10, with(50, 0.5).p90 - with(50, 0.5).p10);
    }
}

TEST(Forecast, IsHumbleOnTheFirstDay) {
    Known nobody{.now = kFirstDay + 10h};
    for (const bool hasActivity : {true, false}) {
        nobody.hasActivity = hasActivity;
        for (const WindowKind& kind : kKinds) {
            const Forecast forecast = nobody
                                          .forecast({.kind = kind,
                                                     .usedPercent = 4,
                                                     .resetsAt = nobody.now + kind.length() * 0.9,
                                                     .observedAt = nobody.now})
                                          .value();
            SCOPED_TRACE(kind.key() + ": " + testing::PrintToString(forecast));
            EXPECT_EQ(forecast.weeksLearnt, 0);
            EXPECT_GT(forecast.pHit, 0.02);
            EXPECT_LT(forecast.pHit, 0.6);
            EXPECT_GT(forecast.p90 - forecast.p10, 30);
        }
    }
}

TEST(Forecast, LearnsWhatIsUsualForSomebody) {
    // Both have used half of the week by Wednesday evening, but only one works on.
    const auto chance = [](int days) {
        return afterWorking({.days = days, .pointsPerHour = 2}, 6 * kWeek + 70h).forecast(WindowKind::week());
    };
    const Forecast rests = chance(3);
    const Forecast works = chance(6);
    SCOPED_TRACE(testing::PrintToString(rests) + " and " + testing::PrintToString(works));
    EXPECT_LT(rests.pHit + 0.05, works.pHit);
    EXPECT_LT(rests.p50 + 15, works.p50);
}

TEST(Forecast, GivesAModelsWeekItsOwnScale) {
    const auto chance = [](double scale) {
        Life life;
        live(life, {.days = 7}, kUtc, kFirstDay, kFirstDay + 3 * kWeek + 36h);
        std::vector<HistorySample> both;
        for (const HistorySample& sample : life.readings) {
            both.push_back(sample);
            if (sample.kindKey == "week") {
                both.push_back(
                    {"week:Opus", std::floor(sample.usedPercent * scale), sample.resetsAt, sample.observedAt});
            }
        }
        life.readings = std::move(both);
        return after(std::move(life), kFirstDay + 3 * kWeek + 36h).forecast(WindowKind::weekModel("Opus"));
    };
    const Forecast half = chance(0.5);
    const Forecast whole = chance(1);
    EXPECT_NEAR(half.p50, whole.p50 / 2, 4);
    EXPECT_LT(half.pHit, whole.pHit / 3);
}

TEST(Forecast, StartsAtTheReadingAndAddsWhatWasDoneSince) {
    const Seconds age = 90min;
    Life life;
    const Instant readAt = kFirstDay + kWeek + 10h;
    live(life, {}, kUtc, kFirstDay, readAt);
    const Known idle = after(life, readAt + age);
    Life busyLife = life;
    live(busyLife, {}, kUtc, readAt, readAt + age);
    busyLife.readings = life.readings;
    const Known busy = after(busyLife, readAt + age);
    for (const WindowKind& kind : {WindowKind::session(), WindowKind::week()}) {
        SCOPED_TRACE(kind.key());
        const double used = newest(life, kind).usedPercent;
        const double done = (kind.isSession() ? 8 : 1) * 2 * (age / 1h);
        EXPECT_GT(busy.forecast(kind).p10, used + 0.7 * done);
        EXPECT_GT(busy.forecast(kind).p50, idle.forecast(kind).p50 + 0.7 * done);
    }
}

}  // namespace
}  // namespace vorn
