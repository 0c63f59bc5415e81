#include <nlohmann/json.hpp>

#include "core/data/reset_plan_store.hpp"
#include "core/support/json.hpp"
#include "core/wording/format.hpp"
#include "fuzz/fuzz_target.hpp"

/// The plan's file, which people edit by hand.
namespace vorn::fuzz {
namespace {

const PlannedReset kReset{.id = "00000000-0000-4000-8000-000000000001", .date = kNow + Seconds{7200}};

bool isPlan(std::string_view text) try {
    const auto document = parseJson(text);
    return document && (static_cast<void>(decodeResetPlan(*document, DateCoding::iso8601)), true);
} catch (const DecodingError& error) {
    requireUtf8(error.what());
    return false;
}

}  // namespace

void checkInput(std::string_view input) {
    const auto path = scratch("plan.json");
    auto damaged = path;
    damaged += ".damaged";
    std::filesystem::remove(damaged);
    writeFile(path, input);
    const ResetPlanStore store(path);
    const ResetPlan plan = store.load();
    const bool isWhole = isPlan(input);
    require(isWhole || plan == ResetPlan{}, "half a plan is none");
    for (const PlannedReset& reset : plan.planned) {
        requireUtf8(reset.note);
        requireUtf8(Format::clock(reset.date, kNow));
    }
    const UsageWindow window{.kind = WindowKind::week(), .resetsAt = kNow + Seconds{86400}, .observedAt = kNow};
    const auto horizon = plan.horizon(window, kNow);
    require(!horizon || (*horizon > kNow && *horizon < *window.resetsAt), "a horizon lies before the reset");

    const ResetPlan pruned = plan.pruned(kNow);
    require(pruned.pruned(kNow) == pruned && pruned.banked == plan.banked, "pruning once is enough");
    const auto edited = store.edit([](ResetPlan& changed) { changed.planned.push_back(kReset); });
    require(edited.planned.size() == plan.planned.size() + 1, "an entry is added to what is there");
    require(store.load() == edited, "a plan is the same after a way through its file");
    require(isWhole || input.empty() || readFile(damaged) == input, "a file that is no plan is kept");
    require(!isWhole || !std::filesystem::exists(damaged), "a plan is not called damaged");
}

}  // namespace vorn::fuzz
