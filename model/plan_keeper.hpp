#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/data/reset_plan_store.hpp"

namespace vorn {

/// The reset plan, which the terminal edits too. What this process changed holds even when it cannot be saved.
class PlanKeeper {
public:
    using Change = std::function<void(ResetPlan&)>;

    explicit PlanKeeper(ResetPlanStore store) : m_store(std::move(store)) {}

    [[nodiscard]] const ResetPlan& plan() const { return m_plan; }
    /// Why the plan could not be saved; else empty.
    [[nodiscard]] const std::string& problem() const { return m_problem; }

    /// Reads the file when it changed, and leaves out what is past. True when the plan is another one.
    bool refresh(Instant now);
    /// Changes the plan and its file; waits a moment for another program that is editing. True when the plan is another
    /// one.
    bool edit(const Change& change, Instant now);
    /// Tries once more to save what could not be saved. True when the plan is another one.
    bool retry(Instant now);

    /// For a demonstration: the plan as given, from no file and kept in none.
    void replace(ResetPlan plan);

private:
    bool take(ResetPlan plan);
    [[nodiscard]] ResetPlan withUnsaved(ResetPlan plan, Instant now) const;
    /// The plan as saved; empty when it could not be.
    std::optional<ResetPlan> save(std::chrono::milliseconds patience, Instant now);

    ResetPlanStore m_store;
    ResetPlan m_plan;
    std::optional<FileStamp> m_stamp;  ///< Of the file as it was last read.
    bool m_isRead = false;
    std::vector<Change> m_unsaved;  ///< In `m_plan`, not in the file.
    std::string m_problem;
    bool m_isDetached = false;  ///< There is no file.
};

}  // namespace vorn
