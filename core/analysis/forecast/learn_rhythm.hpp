#pragma once

#include <span>

#include "core/data/activity/activity_summary.hpp"
#include "core/data/history_sample.hpp"
#include "core/data/rhythm.hpp"
#include "core/support/zone_offsets.hpp"

namespace vorn::VornEngine {

struct LearnInput {
    std::span<const HistorySample> history;     ///< In order of time, as the history store keeps it.
    const ActivitySummary* activity = nullptr;  ///< Null when local activity is switched off.
    const ZoneOffsets& zone;                    ///< Of the stretch from the first new reading to `now`.
    Instant now;                                ///< Readings and events after it are left for later.
};

/// What is known after the readings that `rhythm` has not seen yet. Costs only as much as there are of those: learning
/// after each reading gives what learning now and then does, as long as the activity between is complete. Local
/// activity from before the first reading is taken in the first time that there is any.
Rhythm learn(Rhythm rhythm, const LearnInput& input);

}  // namespace vorn::VornEngine
