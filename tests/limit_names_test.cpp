#include "core/data/limit_names.hpp"

#include <gtest/gtest.h>

namespace vorn {
namespace {

TEST(LimitNames, NameEachLimitOnce) {
    const std::pair<const char*, std::optional<WindowKind>> cases[] = {
        {"five_hour", WindowKind::session()},
        {"seven_day", WindowKind::week()},
        {"seven_day_sonnet", WindowKind::weekModel("Sonnet")},
        {"seven_day_oauth_apps", WindowKind::weekModel("Oauth apps")},
        {"seven_day_sonnet_only", WindowKind::weekModel("Sonnet")},
        {"seven_day_", std::nullopt},
        {"seven_days", std::nullopt},
        {"five_hour_opus", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [member, kind] : cases) {
        EXPECT_EQ(windowKindOfMember(member), kind) << member;
    }
    EXPECT_EQ(modelWeek("Sonnet only"), modelWeek("Sonnet"));
    EXPECT_EQ(modelWeek("Opus 4 Only").modelName(), "Opus 4");
    EXPECT_EQ(modelWeek(" only").modelName(), " only");
    EXPECT_EQ(titleOfMember("spend_limit"), "Spend limit");
    EXPECT_EQ(titleOfMember(""), "");
}

}  // namespace
}  // namespace vorn
