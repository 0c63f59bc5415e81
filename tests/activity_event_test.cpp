#include "core/data/activity/activity_event.hpp"

#include <gtest/gtest.h>

namespace vorn {
namespace {

TEST(TokenCounts, weighsEachClassByItsPriceAndEachModelByItsFamily) {
    const TokenCounts one{.input = 1, .output = 10, .cacheRead = 100, .cacheWrite5m = 1000, .cacheWrite1h = 10000};
    const double sonnet = 1 + 50 + 10 + 1250 + 20000;
    const std::pair<const char*, double> cases[] = {
        {"claude-sonnet-5-2", sonnet},
        {"us.anthropic.claude-Haiku-4-5-20251001-v1:0", sonnet / 3},
        {"sonnet-distilled-haiku", sonnet / 3},  // haiku is looked for first
        {"claude-opus-5-5", sonnet * 5 / 3},
        {"unknown", sonnet * 5 / 3},
        {"haik", sonnet * 5 / 3},
    };
    for (const auto& [model, weight] : cases) {
        EXPECT_DOUBLE_EQ(one.weight(model), weight) << model;
    }
    EXPECT_EQ(one.total(), 11111);
    EXPECT_EQ((TokenCounts{.input = 1}.weight("haiku")), 0.3333333333333333);
    EXPECT_EQ(familyMultiplier("opus"), 1.6666666666666667);
}

TEST(ActivityEvent, namesTheProjectAfterTheLastComponent) {
    const std::pair<const char*, const char*> cases[] = {
        {"/home/ana/proj", "proj"}, {"/home/ana/map tiles//", "map tiles"}, {"", "Unknown"}, {"/", "/"}, {"///", "/"},
        {"relative", "relative"},   {"/home/ana/.config", ".config"},
    };
    for (const auto& [cwd, project] : cases) {
        EXPECT_EQ((ActivityEvent{.timestamp = {}, .model = "m", .cwd = cwd, .tokens = {}}.project()), project) << cwd;
    }
}

}  // namespace
}  // namespace vorn
