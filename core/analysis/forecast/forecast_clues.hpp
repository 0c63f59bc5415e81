#pragma once

#include <optional>
#include <span>
#include <vector>

#include "core/analysis/forecast/usual_week.hpp"
#include "core/data/activity/activity_summary.hpp"
#include "core/data/history_sample.hpp"
#include "core/data/usage_window.hpp"

namespace vorn::VornEngine {

/// What a forecast of one window looks at.
struct Situation {
    const UsageWindow& window;                  ///< Its reset lies after `now`, its reading is finite.
    std::span<const HistorySample> history;     ///< Of all windows, in order of time.
    const ActivitySummary* activity = nullptr;  ///< Null when local activity is switched off.
    const Rhythm& rhythm;                       ///< With everything learnt up to `now`.
    const UsualWeek& usual;
    const ZoneOffsets& zone;
    Instant now;
};

/// Plain estimates of what a window has still to come, mostly as logarithms: what the fitted constants are applied to.
struct Clues {
    double used = 0;  ///< Percent: the reading and what this machine used since.
    Instant from;     ///< What is still to come begins here: now, or the reading where nothing is known since.
    double scale =
        1;  ///< Percent of this limit for each point that the clues speak of: a model's week is not the week.
    /// As many as the model for this kind of window has constants for. Whoever changes them fits those anew.
    std::vector<double> values;
};

Clues weekClues(const Situation& situation);
Clues sessionClues(const Situation& situation);

}  // namespace vorn::VornEngine
