#include "core/data/reset_plan.hpp"

#include <algorithm>

#include "core/support/json.hpp"

namespace vorn {
namespace {

/// An entry stays in sight for a day after its date.
constexpr Seconds kKeptAfterDate{86400};

}  // namespace

std::optional<Instant> ResetPlan::horizon(const UsageWindow& window, Instant now) const {
    if (!window.resetsAt) {
        return std::nullopt;
    }
    std::optional<Instant> earliest;
    for (const PlannedReset& reset : planned) {
        if (reset.covers(window.kind) && reset.date > now && reset.date < *window.resetsAt) {
            earliest = earliest ? std::min(*earliest, reset.date) : reset.date;
        }
    }
    return earliest;
}

ResetPlan ResetPlan::pruned(Instant now) const {
    ResetPlan kept = *this;
    std::erase_if(kept.planned, [&](const PlannedReset& reset) { return reset.date <= now - kKeptAfterDate; });
    std::ranges::stable_sort(kept.planned, {}, &PlannedReset::date);
    return kept;
}

nlohmann::json encode(const ResetPlan& plan, DateCoding dates) {
    auto planned = nlohmann::json::array();
    for (const PlannedReset& reset : plan.planned) {
        planned.push_back(encode(reset, dates));
    }
    return {{"planned", std::move(planned)}, {"banked", plan.banked}};
}

ResetPlan decodeResetPlan(const nlohmann::json& value, DateCoding dates) {
    const auto& planned = requireMember(value, "planned");
    if (!planned.is_array()) {
        throw DecodingError("Expected an array.");
    }
    ResetPlan plan{.planned = {}, .banked = decodeInteger(requireMember(value, "banked"))};
    for (const auto& entry : planned) {
        plan.planned.push_back(decodePlannedReset(entry, dates));
    }
    return plan;
}

}  // namespace vorn
