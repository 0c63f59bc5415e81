#include "core/data/rate_limits.hpp"

#include <chrono>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "core/data/limit_names.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using testing::IsEmpty;

const Instant kNow = sys_days{2026y / 11 / 23} + 12h;
const Instant kReset = sys_days{2026y / 11 / 26} + 21h;

RateLimits decode(const char* text) {
    return decodeRateLimits(nlohmann::json::parse(text), kNow, DataSource::statusLine);
}

UsageWindow window(WindowKind kind, double percent, std::optional<Instant> reset = kReset) {
    return {.kind = std::move(kind),
            .usedPercent = percent,
            .resetsAt = reset,
            .observedAt = kNow,
            .source = DataSource::statusLine};
}

TEST(RateLimits, TakeEveryMember) {
    const RateLimits limits = decode(R"({
        "five_hour":{"used_percentage":23.4,"resets_at":1795726800},"seven_day":{"utilization":104},
        "seven_day_oauth_apps":{"used_percentage":3,"resets_at":"2026-11-26T21:00:00.000Z"},"seven_day_opus":null,
        "seven_day_sonnet":{"used_percentage":"?"},"five_hour_fast":{"used_percentage":7,"resets_at":1795726800000},
        "spend_limit":{"used":30,"limit":40,"resets_at":1795726800},"note":"x","empty":{},
        "extra_usage":{"is_enabled":true,"monthly_limit":2000,"used_credits":1540,"utilization":77,"currency":"USD"}})");
    EXPECT_THAT(limits.windows, testing::UnorderedElementsAre(window(WindowKind::session(), 23.4),
                                                              window(WindowKind::week(), 104, std::nullopt),
                                                              window(modelWeek("Oauth apps"), 3)));
    const std::vector<OtherLimit> others = {
        {.name = "Five hour fast", .usedPercent = 7, .observedAt = kNow},
        {.name = "Spend limit", .usedPercent = 75, .used = 30, .cap = 40, .resetsAt = kReset, .observedAt = kNow}};
    EXPECT_EQ(limits.others.limits, others);
    EXPECT_EQ(
        limits.others.credits,
        (Credits{
            .isEnabled = true, .spent = 1540, .cap = 2000, .usedPercent = 77, .currency = "USD", .observedAt = kNow}));
}

TEST(RateLimits, TakeOfTheListWhatNoMemberHas) {
    const RateLimits limits = decode(R"({"seven_day":{"utilization":61.2},"seven_day_opus":{"utilization":5},"limits":[
        {"kind":"session","percent":42},{"kind":"weekly_all","percent":61},
        {"kind":"weekly_scoped","percent":70,"scope":{"model":{"id":null,"display_name":"Fable only"}}},
        {"kind":"weekly_scoped","percent":6,"scope":{"model":{"display_name":"OPUS"}}},
        {"kind":"weekly_scoped","percent":8,"scope":{"model":null,"surface":"x"}},
        {"kind":"monthly_all","percent":9},{"percent":1},7,null]})");
    EXPECT_THAT(limits.windows, testing::UnorderedElementsAre(window(WindowKind::session(), 42, std::nullopt),
                                                              window(WindowKind::week(), 61.2, std::nullopt),
                                                              window(modelWeek("Opus"), 5, std::nullopt),
                                                              window(modelWeek("Fable"), 70, std::nullopt)));
    EXPECT_THAT(limits.others.limits, testing::ElementsAre(testing::Field(&OtherLimit::name, "Weekly scoped"),
                                                           testing::Field(&OtherLimit::name, "Monthly all")));
}

TEST(RateLimits, StayWithinBounds) {
    for (const char* text : {"null", "[]", "7", "\"x\"", "{}", R"({"limits":{"percent":"x"},"extra_usage":[]})"}) {
        EXPECT_EQ(decode(text), RateLimits()) << text;
    }
    nlohmann::json many;
    for (int i = 0; i < 20'000; ++i) {
        many["seven_day_" + std::to_string(i) + std::string(1000, 'x')] = {{"utilization", i}};
        many["limits"].push_back({{"kind", "k" + std::to_string(i)}, {"percent", i}});
    }
    const RateLimits limits = decodeRateLimits(many, kNow, DataSource::statusLine);
    EXPECT_EQ(limits.windows.size() + limits.others.limits.size(), 100);
    EXPECT_LE(limits.windows.front().kind.key().size(), 70);
}

}  // namespace
}  // namespace vorn
