#pragma once

#include <memory>
#include <optional>

#include "core/data/history/history_store.hpp"
#include "core/data/outcome.hpp"
#include "core/data/probe_record.hpp"
#include "core/data/reset_plan_store.hpp"
#include "model/model_clock.hpp"
#include "model/model_sources.hpp"

namespace vorn {

/// What the model works with. All of it is the model's own from then on. A demonstration uses nothing but the
/// clock; the sources and the ticker may then be null.
struct ModelParts {
    std::unique_ptr<ModelClock> clock;
    std::unique_ptr<Ticker> ticker;
    std::unique_ptr<ProbeSource> probe;
    std::unique_ptr<ActivitySource> activity;
    std::unique_ptr<SnapshotSource> snapshot;
    std::unique_ptr<HistoryStore> history;
    ResetPlanStore resetPlan;
    ProbeRecordStore probeRecord;
    std::optional<OutcomeStore> outcomes{};
};

/// The real clock, sources and stores of this user, at the places that `VornPaths` names now. `ticker` must outlive
/// them.
ModelParts makeModelParts(QTimer& ticker);

}  // namespace vorn
