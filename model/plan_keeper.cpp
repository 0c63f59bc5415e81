#include "model/plan_keeper.hpp"

#include <filesystem>
#include <utility>

#include "core/support/json.hpp"

namespace vorn {

bool PlanKeeper::take(ResetPlan plan) {
    if (plan == m_plan) {
        return false;
    }
    m_plan = std::move(plan);
    return true;
}

ResetPlan PlanKeeper::withUnsaved(ResetPlan plan, Instant now) const {
    for (const Change& change : m_unsaved) {
        change(plan);
    }
    return plan.pruned(now);
}

bool PlanKeeper::refresh(Instant now) {
    if (m_isDetached) {
        return false;
    }
    // Before reading: what is written in between shows the next time.
    const auto stamp = m_store.stamp();
    if (std::exchange(m_isRead, true) && stamp == m_stamp) {
        return false;
    }
    m_stamp = stamp;
    return take(withUnsaved(m_store.load(), now));
}

bool PlanKeeper::edit(const Change& change, Instant now) {
    ResetPlan edited = m_plan;
    change(edited);
    edited = edited.pruned(now);
    if (m_isDetached) {
        return take(std::move(edited));
    }
    m_unsaved.push_back(change);
    auto saved = save(ResetPlanStore::defaultPatience, now);
    return take(saved ? *std::move(saved) : std::move(edited));
}

bool PlanKeeper::retry(Instant now) {
    if (m_unsaved.empty()) {
        return false;
    }
    auto saved = save(std::chrono::milliseconds{0}, now);
    return saved && take(*std::move(saved));
}

std::optional<ResetPlan> PlanKeeper::save(std::chrono::milliseconds patience, Instant now) {
    try {
        ResetPlan saved = m_store.edit([&](ResetPlan& plan) { plan = withUnsaved(std::move(plan), now); }, patience);
        m_unsaved.clear();
        m_problem.clear();
        return saved;
    } catch (const std::filesystem::filesystem_error& error) {
        m_problem = error.code().message();
    } catch (const DecodingError& error) {
        m_problem = error.what();
        m_unsaved.clear();  // trying again would fail for ever, and every later edit with it
    }
    return std::nullopt;
}

void PlanKeeper::replace(ResetPlan plan) {
    m_isDetached = true;
    m_unsaved.clear();
    m_problem.clear();
    m_plan = std::move(plan);
}

}  // namespace vorn
