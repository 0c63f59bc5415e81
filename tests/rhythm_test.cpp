#include "core/data/rhythm.hpp"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

namespace vorn {
namespace {

Rhythm someRhythm() {
    Rhythm rhythm;
    for (std::size_t i = 0; i < Rhythm::kHours; ++i) {
        const auto value = static_cast<double>(i);
        rhythm.hours.at(i) = {value / 8, value / 4, value * 1000, value / 16};
    }
    rhythm.days = {{20'000, 24, 12.5, 0}, {20'001, 23, 0, 123'000}};
    rhythm.recent = {{480'000, 1.5}, {480'003, 0.25}};
    rhythm.sessions = {4, 180, 1};
    rhythm.exchange = {400, 50, 300, 1e6, 100};
    const Rhythm::Reading reading{42.5, instantSince1970(1'800'000'000), instantSince1970(1'799'999'000.25)};
    rhythm.models["week:Opus"] = {10, 20, reading};
    rhythm.models["week:Sonnet"] = {1, 2, {}};
    rhythm.fullWeeks = 1.5;
    rhythm.weeks = 3;
    rhythm.weekPointsWatched = 44;
    rhythm.weightWatched = 880'000;
    rhythm.weightBefore = 5e6;
    rhythm.hoursBefore = 672;
    rhythm.session = rhythm.week = reading;
    rhythm.firstReadAt = instantSince1970(1'790'000'000);
    rhythm.firstKnownAt = instantSince1970(1'789'000'000.5);
    rhythm.learntUpTo = reading.observedAt;
    rhythm.seenUpTo = 499'999;
    return rhythm;
}

void replaceOnce(std::string& text, std::string_view old, std::string_view with) {
    const auto at = text.find(old);
    ASSERT_NE(at, std::string::npos) << old;
    text.replace(at, old.size(), with);
}

TEST(RhythmJson, IsTheSameAfterwards) {
    EXPECT_EQ(decodeRhythm(encodeRhythm(someRhythm())), someRhythm());
    EXPECT_EQ(decodeRhythm(encodeRhythm({})), Rhythm{});

    Rhythm fine = someRhythm();
    fine.hours[0].points = 1.0 / 3;
    const Rhythm stored = decodeRhythm(encodeRhythm(fine));
    EXPECT_NEAR(stored.hours[0].points, 1.0 / 3, 1e-6);
    EXPECT_EQ(decodeRhythm(encodeRhythm(stored)), stored) << "rounded once";
}

TEST(RhythmJson, KeepsWhatIsNotDamaged) {
    const struct {
        const char* name;
        const char* old;
        const char* with;
        void (*change)(Rhythm&);
    } cases[] = {
        {"an hour", "[2.5,5.0,20000.0,1.25]", "[2.5,-5.0,20000.0,1.25]",
         [](Rhythm& r) {
             r.hours[20] = {};
         }},
        {"an hour of another type", "[2.5,5.0,20000.0,1.25]", "\"x\"",
         [](Rhythm& r) {
             r.hours[20] = {};
         }},
        {"hours too few", "\"hours\":[[0.0,0.0,0.0,0.0],", "\"hours\":[",
         [](Rhythm& r) {
             r.hours = {};
         }},
        {"a day", "[20000,24.0,12.5,0.0]", "[20000,24.0]",
         [](Rhythm& r) {
             r.days.erase(r.days.begin());
         }},
        {"a day twice", "[20000,24.0,12.5,0.0]", "[20001,23.0,0.0,123000.0]",
         [](Rhythm& r) {
             r.days.erase(r.days.begin());
         }},
        {"days in disorder", "[[20000,24.0,12.5,0.0],[20001,23.0,0.0,123000.0]]",
         "[[20001,23.0,0.0,123000.0],[20000,24.0,12.5,0.0]]",
         [](Rhythm&) {
         }},
        {"a recent hour beyond all time", "[480000,1.5]", "[48000000000,1.5]",
         [](Rhythm& r) {
             r.recent.erase(r.recent.begin());
         }},
        {"the sums of sessions", "\"sessions\":[4.0", "\"sessions\":[1e300",
         [](Rhythm& r) {
             r.sessions = {};
         }},
        {"a model", "\"sums\":[10.0,20.0]", "\"sums\":null",
         [](Rhythm& r) {
             r.models.erase("week:Opus");
         }},
        {"no number for when it is learnt up to", "\"learntUpTo\":1", "\"x\":1",
         [](Rhythm& r) {
             r = {};
         }},
        {"another version", "\"version\":1", "\"version\":2",
         [](Rhythm& r) {
             r = {};
         }},
        {"cut short", "\"seenUpTo\":499999", "\"seen",
         [](Rhythm& r) {
             r = {};
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string text = encodeRhythm(someRhythm());
        replaceOnce(text, c.old, c.with);
        Rhythm expected = someRhythm();
        c.change(expected);
        EXPECT_EQ(decodeRhythm(text), expected);
    }
    for (const char* text : {"", "null", "[]", "{}", "1e999", "\xff\xfe"}) {
        EXPECT_EQ(decodeRhythm(text), Rhythm{}) << text;
    }
}

TEST(RhythmJson, IsSoundWhateverItWasReadFrom) {
    const std::string whole = encodeRhythm(someRhythm());
    std::mt19937 random(3);
    for (int i = 0; i < 600; ++i) {
        std::string text = whole;
        for (int change = 0; change < 3; ++change) {
            text[random() % text.size()] = static_cast<char>("0123456789eE+-.,[]{}\"nx"[random() % 23]);
        }
        const Rhythm rhythm = decodeRhythm(text);
        for (const auto& hour : rhythm.hours) {
            ASSERT_TRUE(hour.seen >= 0 && hour.points >= 0 && hour.weight >= 0 && hour.active >= 0) << text;
        }
        ASSERT_LE(rhythm.days.size(), Rhythm::kMostDays);
        // Numbers are rounded the first time.
        const Rhythm stored = decodeRhythm(encodeRhythm(rhythm));
        ASSERT_TRUE(decodeRhythm(encodeRhythm(stored)) == stored) << text;
    }
}

}  // namespace
}  // namespace vorn
