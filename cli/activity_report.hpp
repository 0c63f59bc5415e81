#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "cli/terminal.hpp"
#include "core/data/activity/activity_summary.hpp"

namespace vorn::cli {

/// What was done on this machine in a span of time.
struct ActivityReport {
    /// What was done in one of the customary spans, for comparison.
    struct Total {
        const char* label;
        Seconds span;
        double weight;  ///< Cost-weighted tokens.
    };

    Instant now;
    Seconds since{};             ///< The span looked at, ending at `now`.
    std::filesystem::path root;  ///< Where the transcripts were looked for.
    std::size_t events = 0;
    TokenCounts tokens;
    double weight = 0;
    std::vector<Total> totals;  ///< One for each customary span that lies within what was read.
    Seconds bucket{};
    std::vector<ActivitySummary::Bucket> timeline;
    std::vector<ActivitySummary::Slice> projects;
    std::vector<ActivitySummary::Slice> models;
    std::optional<Instant> lastEventAt;
};

struct ActivityRequest {
    Instant now;
    Seconds since{};
    std::filesystem::path root;
    std::size_t columns = 96;  ///< The most buckets the timeline may have.
};
/// `activity` must reach back over `since` and over every span that `totals` is to hold, and hold nothing after `now`.
ActivityReport reportActivity(const ActivitySummary& activity, ActivityRequest request);

std::string renderActivity(const ActivityReport& report, const Terminal& terminal);

/// For programs; the keys are documented in docs/json.md and stay.
nlohmann::json activityJson(const ActivityReport& report);

}  // namespace vorn::cli
