#include "core/data/reset_plan.hpp"

#include <set>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/data/reset_plan_store.hpp"
#include "core/support/file.hpp"
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
constexpr const char* kId = "6F9619FF-8B86-4011-B42D-00C04FC964FF";

PlannedReset planned(Instant date, Scope scope = Scope::all) {
    return {.id = kId, .date = date, .scope = scope, .note = "said \"soon\""};
}

TEST(ResetPlan, HorizonIsTheEarliestResetThatCutsTheWindowShort) {
    const auto session = WindowKind::session();
    const auto opus = WindowKind::weekModel("Opus");
    const struct {
        const char* name;
        WindowKind kind;
        std::vector<PlannedReset> planned;
        std::optional<Instant> horizon;
    } cases[] = {
        {"none", session, {}, std::nullopt},
        {"at the window's own reset", session, {planned(kReset)}, std::nullopt},
        {"just before it", session, {planned(kReset - 1s)}, kReset - 1s},
        {"now", session, {planned(kNow)}, std::nullopt},
        {"just after now", session, {planned(kNow + 1s)}, kNow + 1s},
        {"earliest, past ones aside", session, {planned(kNow + 2h), planned(kNow + 1h), planned(kNow - 1h)}, kNow + 1h},
        {"week for a model", opus, {planned(kNow + 1h, Scope::week)}, kNow + 1h},
        {"week for all models", WindowKind::week(), {planned(kNow + 1h, Scope::week)}, kNow + 1h},
        {"week for the session", session, {planned(kNow + 1h, Scope::week)}, std::nullopt},
        {"session for the session", session, {planned(kNow + 1h, Scope::session)}, kNow + 1h},
        {"session for a week", opus, {planned(kNow + 1h, Scope::session)}, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ResetPlan plan{.planned = c.planned};
        UsageWindow window{.kind = c.kind, .usedPercent = 10, .resetsAt = kReset, .observedAt = kNow};
        EXPECT_EQ(plan.horizon(window, kNow), c.horizon);
        window.resetsAt.reset();
        EXPECT_EQ(plan.horizon(window, kNow), std::nullopt);
    }
}

TEST(ResetPlan, PruningKeepsADayAndSorts) {
    const ResetPlan plan{.planned = {planned(kNow + 2h), planned(kNow - 24h), planned(kNow - 23h, Scope::week),
                                     planned(kNow - 23h, Scope::session)},
                         .banked = 3};
    EXPECT_EQ(plan.pruned(kNow), (ResetPlan{.planned = {planned(kNow - 23h, Scope::week),
                                                        planned(kNow - 23h, Scope::session), planned(kNow + 2h)},
                                            .banked = 3}));
}

TEST(ResetPlanStore, WritesForPeopleAndReadsItBack) {
    const TemporaryDirectory dir;
    const ResetPlanStore store(dir / "new/reset-plan.json");
    EXPECT_EQ(store.load(), ResetPlan{});
    store.save({.planned = {planned(kNow, Scope::week)}, .banked = -1});
    EXPECT_EQ(readAll(dir / "new/reset-plan.json"), R"({
  "banked": -1,
  "planned": [
    {
      "date": "2026-11-22T12:00:00Z",
      "id": "6F9619FF-8B86-4011-B42D-00C04FC964FF",
      "note": "said \"soon\"",
      "scope": "week"
    }
  ]
})");
    EXPECT_EQ(store.load(), (ResetPlan{.planned = {planned(kNow, Scope::week)}, .banked = -1}));
}

TEST(ResetPlanStore, OneBadEntryIsAnEmptyPlan) {
    const std::string entry =
        R"({"date":"2026-11-22T13:00:00+01:00","id":"6f9619ff-8b86-4011-b42d-00c04fc964ff","note":"","scope":"all"})";
    const auto with = [&](std::string_view from, std::string_view to) {
        std::string text = R"({"banked":2,"planned":[)" + entry + "," + entry + "]}";
        return text.replace(text.rfind(from), from.size(), to);
    };
    const struct {
        std::string text;
        bool isPlan;
    } cases[] = {
        {with("all", "all"), true},
        {with("all", "session"), true},
        {with("all", "month"), false},
        {with("\"note\":\"\",", ""), false},
        {with("\"\"", "null"), false},
        {with("\"2026-11-22T13:00:00+01:00\"", "0"), false},
        {with(":00:00+", ":00:00.5+"), false},
        {with("6f9619ff", "6f9619fg"), false},
        {with("6f9619ff-", "6f9619ff"), false},
        {"{\"planned\":[]}", false},
        {R"({"planned":[],"banked":"2"})", false},
        {R"({"planned":[],"banked":2.5})", false},
        {R"({"planned":{},"banked":2})", false},
        {R"({"banked":2})", false},
        {"[]", false},
        {"{", false},
        {"", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const TemporaryDirectory dir;
        const ResetPlan plan = ResetPlanStore(dir.write("plan", c.text)).load();
        EXPECT_EQ(plan.banked, c.isPlan ? 2 : 0);
        EXPECT_EQ(plan.planned.size(), c.isPlan ? 2U : 0U);
        EXPECT_TRUE(!c.isPlan || (plan.planned[0].id == kId && plan.planned[0].date == kNow));
    }
}

TEST(ResetPlanStore, SaysWhenItCannotSave) {
    const TemporaryDirectory dir;
    const fs::path file = dir.write("plan", "");
    EXPECT_THROW(ResetPlanStore(file / "below a file").save({}), fs::filesystem_error);
    EXPECT_THROW(ResetPlanStore(dir.path()).save({}), fs::filesystem_error);
    const ResetPlanStore store(file);
    EXPECT_THROW(store.save({.planned = {planned(sys_days{12000y / 1 / 1})}}), DecodingError);
    EXPECT_THROW(store.save({.planned = {{.id = "no id", .date = kNow, .note = ""}}}), DecodingError);
    const auto held = FileLock::acquire(dir / "plan.lock", 0ms);
    EXPECT_THROW(store.edit([](ResetPlan& plan) { plan.banked = 1; }, 1ms), fs::filesystem_error);
    EXPECT_EQ(readAll(file), "");
}

TEST(ResetPlanStore, EditorsDoNotUndoEachOther) {
    constexpr int kEach = 50;
    const TemporaryDirectory dir;
    const ResetPlanStore store(dir / "plan");
    const auto bank = [&] {
        for (int i = 0; i < kEach; ++i) {
            store.edit([](ResetPlan& plan) { ++plan.banked; }, 20s);
        }
    };
    const pid_t child = ::fork();
    if (child == 0) {
        bank();
        ::_exit(0);
    }
    bank();
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(store.load().banked, 2 * kEach);
    const auto written = fs::last_write_time(dir / "plan");
    EXPECT_EQ(store.edit([](ResetPlan&) {}).banked, 2 * kEach);
    EXPECT_EQ(fs::last_write_time(dir / "plan"), written);
}

TEST(Uuid, IsRandomAndWellFormed) {
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const std::string id = randomUuid();
        EXPECT_EQ(canonicalUuid(id), id);
        EXPECT_EQ(id[14], '4');
        EXPECT_NE(std::string_view("89AB").find(id[19]), std::string_view::npos);
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 1000U);
}

}  // namespace
}  // namespace vorn
