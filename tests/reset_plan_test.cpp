#include "core/data/reset_plan.hpp"

#include <tuple>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/data/reset_plan_store.hpp"
#include "core/support/file.hpp"
#include "core/support/json.hpp"
#include "core/support/uuid.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace std::chrono;
using Scope = PlannedReset::Scope;
using test::readAll;
using test::TemporaryDirectory;

constexpr Instant kNow = sys_days{2026y / November / 22} + 12h;
constexpr Instant kReset = kNow + 3h;

PlannedReset planned(Instant date, Scope scope = Scope::all) {
    return {"6F9619FF-8B86-4011-B42D-00C04FC964FF", date, scope, "said \"soon\""};
}

TEST(ResetPlan, HorizonIsTheEarliestResetThatCutsTheWindowShort) {
    const auto session = WindowKind::session();
    const auto opus = WindowKind::weekModel("Opus");
    const std::tuple<const char*, WindowKind, std::vector<PlannedReset>, std::optional<Instant>> cases[] = {
        {"at the window's own reset", session, {planned(kReset)}, {}},
        {"just before it", session, {planned(kReset - 1s)}, kReset - 1s},
        {"now", session, {planned(kNow)}, {}},
        {"just after now", session, {planned(kNow + 1s)}, kNow + 1s},
        {"earliest, past ones aside", session, {planned(kNow + 2h), planned(kNow + 1h), planned(kNow - 1h)}, kNow + 1h},
        {"week for a model", opus, {planned(kNow + 1h, Scope::week)}, kNow + 1h},
        {"week for the session", session, {planned(kNow + 1h, Scope::week)}, {}},
        {"session for the session", session, {planned(kNow + 1h, Scope::session)}, kNow + 1h},
        {"session for a week", opus, {planned(kNow + 1h, Scope::session)}, {}},
    };
    for (const auto& [name, kind, resets, expected] : cases) {
        const ResetPlan plan{.planned = resets};
        EXPECT_EQ(plan.horizon({.kind = kind, .resetsAt = kReset, .observedAt = kNow}, kNow), expected) << name;
        EXPECT_EQ(plan.horizon({.kind = kind, .resetsAt = {}, .observedAt = kNow}, kNow), std::nullopt);
    }
}

TEST(ResetPlan, PruningKeepsADayAndSorts) {
    const PlannedReset week = planned(kNow - 23h, Scope::week);
    const PlannedReset session = planned(kNow - 23h, Scope::session);
    const ResetPlan plan{.planned = {planned(kNow + 2h), planned(kNow - 24h), week, session}, .banked = 3};
    EXPECT_EQ(plan.pruned(kNow), (ResetPlan{.planned = {week, session, planned(kNow + 2h)}, .banked = 3}));
}

TEST(ResetPlanStore, WritesForPeopleAndReadsItBack) {
    const TemporaryDirectory dir;
    const ResetPlanStore store(dir / "new/reset-plan.json");
    EXPECT_EQ(store.load(), ResetPlan{});
    const ResetPlan plan{.planned = {planned(kNow, Scope::week)}, .banked = -1};
    store.save(plan);
    EXPECT_THAT(readAll(dir / "new/reset-plan.json"), testing::StartsWith("{\n  \"banked\": -1,\n  \"planned\": [\n"));
    EXPECT_EQ(store.load(), plan);
}

TEST(ResetPlanStore, OneBadEntryIsAnEmptyPlan) {
    const std::string entry =
        R"({"date":"2026-11-22T13:00:00+01:00","id":"6f9619ff-8b86-4011-b42d-00c04fc964ff","note":"","scope":"all"})";
    const std::string whole = R"({"banked":2,"planned":[)" + entry + "," + entry + "]}";
    const TemporaryDirectory dir;
    const ResetPlan plan = ResetPlanStore(dir.write("plan", whole)).load();
    ASSERT_EQ(plan.planned.size(), 2U);
    EXPECT_EQ(plan.banked, 2);
    EXPECT_EQ(plan.planned[1].date, kNow);
    EXPECT_EQ(plan.planned[1].id, planned(kNow).id);

    const std::pair<std::string, std::string> spoilt[] = {
        {"\"all\"", "\"month\""}, {"\"note\":\"\",", ""},   {"\"\"", "null"},          {"\"2026-", "\"26-"},
        {":00:00+", ":00:00.5+"}, {"6f9619ff", "6f9619fg"}, {"6f9619ff-", "6f9619ff"}, {"\"banked\":2,", ""},
        {":2,", ":\"2\","},       {":2,", ":2.5,"},         {"planned", "plan"},       {"]}", "]"},
    };
    for (const auto& [from, to] : spoilt) {
        SCOPED_TRACE(to);
        std::string text = whole;
        text.replace(text.rfind(from), from.size(), to);
        EXPECT_EQ(ResetPlanStore(dir.write("plan", text)).load(), ResetPlan{});
    }
}

TEST(ResetPlanStore, SaysWhenItCannotSave) {
    const TemporaryDirectory dir;
    const fs::path file = dir.write("plan", "");
    EXPECT_THROW(ResetPlanStore(file / "below a file").save({}), fs::filesystem_error);
    EXPECT_THROW(ResetPlanStore(dir.path()).save({}), fs::filesystem_error);
    const ResetPlanStore store(file);
    EXPECT_THROW(store.save({.planned = {planned(sys_days{12000y / 1 / 1})}}), DecodingError);
    EXPECT_THROW(store.save({.planned = {{"no id", kNow, Scope::all, ""}}}), DecodingError);
    const auto codeOf = [](const ResetPlanStore& edited) {
        try {
            edited.edit([](ResetPlan& plan) { plan.banked = 1; }, 1ms);
        } catch (const fs::filesystem_error& error) {
            return error.code();
        }
        return std::error_code();
    };
    const auto held = FileLock::beside(file, 0ms);
    EXPECT_EQ(codeOf(store), std::errc::device_or_resource_busy);
    fs::create_directory(dir / "other.lock");
    EXPECT_EQ(codeOf(ResetPlanStore(dir / "other")), std::errc::is_a_directory);
    EXPECT_EQ(readAll(file), "");
}

TEST(ResetPlanStore, EditorsDoNotUndoEachOther) {
    constexpr int kEach = 50;
    const TemporaryDirectory dir;
    const ResetPlanStore store(dir / "plan");
    const pid_t child = ::fork();
    for (int i = 0; i < kEach; ++i) {
        store.edit([](ResetPlan& plan) { ++plan.banked; }, 20s);
    }
    if (child == 0) {
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(store.load().banked, 2 * kEach);
    const auto written = fs::last_write_time(dir / "plan");
    EXPECT_EQ(store.edit([](ResetPlan&) {}).banked, 2 * kEach);
    EXPECT_EQ(fs::last_write_time(dir / "plan"), written) << "no change, no writing";
}

TEST(Uuid, IsRandomAndOfVersionFour) {
    const std::string id = randomUuid();
    EXPECT_EQ(canonicalUuid(id), id);
    EXPECT_EQ(id[14], '4');
    EXPECT_NE(std::string_view("89AB").find(id[19]), std::string_view::npos);
    EXPECT_NE(randomUuid(), id);
}

}  // namespace
}  // namespace vorn
