#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/relay_state.hpp"
#include "core/analysis/rate_reading.hpp"
#include "core/analysis/session_week_ratio.hpp"
#include "core/analysis/window_assessment.hpp"
#include "core/data/history_sample.hpp"
#include "core/data/reset_plan.hpp"
#include "core/data/usage_insights.hpp"
#include "core/sources/activity_summary.hpp"
#include "ui/format/head.hpp"

namespace vorn::cli {

/// Why there is no newer reading.
struct ProbeFailure {
    std::string message;             ///< The fixed text.
    std::string advice;              ///< What to do, where that is known; else empty.
    std::optional<Instant> retryAt;  ///< When the client is asked again; absent when the next run asks.
};

/// What a status is made of, live or for a demonstration.
struct Readings {
    std::vector<UsageWindow> windows;  ///< As they stand now, by kind.
    std::optional<UsageInsights> insights;
    std::vector<HistorySample> history;
    std::optional<ActivitySummary> activity;  ///< Absent when no window needs it.
    ResetPlan plan;
    std::optional<ProbeFailure> failure;
    bool isHistorySaved = true;  ///< Else what was read this time is missing from it.
};

/// The answer, ready to be shown.
struct StatusReport {
    struct Card {
        WindowAssessment assessment;
        std::vector<RateReading> rates;  ///< One for each horizon.
    };

    Instant now;
    std::vector<Card> cards;                   ///< By kind.
    std::optional<WindowAssessment> headline;  ///< The most urgent window; absent without any.
    std::optional<VornSteer> steer;
    std::optional<Format::Head> head;  ///< The sentence for the whole and its reason; absent without any window.
    std::optional<SessionWeekRatio> ratio;
    std::optional<double> sessionsLeft;  ///< This week; absent while the ratio or the week is unknown.
    std::optional<UsageInsights> insights;
    ResetPlan plan;
    std::optional<Instant> observedAt;  ///< The newest reading.
    std::optional<DataSource> source;   ///< Where that came from.
    std::optional<ProbeFailure> failure;
    bool isHistorySaved = true;
    std::optional<RelayState> relay{};  ///< Absent in a demonstration.
};

/// How much of it will be shown.
enum class Detail : std::uint8_t {
    full,
    line,  ///< The windows and the headline, for bars and prompts: without the ratio, which needs the whole history.
};

StatusReport analyse(Readings readings, Instant now, Detail detail = Detail::full);

}  // namespace vorn::cli
