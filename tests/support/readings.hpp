#pragma once

#include <chrono>
#include <utility>
#include <vector>

#include "core/analysis/matching_samples.hpp"
#include "core/data/activity/activity_summary.hpp"
#include "core/data/usage_window.hpp"

/// Readings and activity around one fixed moment, for tests of what is computed from them.
namespace vorn::test {

using namespace std::chrono_literals;

/// A Sunday noon.
inline const Instant kNow = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + 12h;

inline UsageWindow reading(const WindowKind& kind, double usedPercent, Seconds resetsIn) {
    return {.kind = kind, .usedPercent = usedPercent, .resetsAt = kNow + resetsIn, .observedAt = kNow};
}

/// Used percents at times relative to `kNow`.
using Course = std::vector<std::pair<Seconds, double>>;

inline MatchingSamples history(const Course& course) {
    std::vector<VornEngine::RatePoint> points;
    points.reserve(course.size());
    for (const auto& [time, value] : course) {
        points.push_back({kNow + time, value});
    }
    return MatchingSamples(std::move(points));
}

/// Replies of the given weights at times relative to `kNow`.
inline ActivitySummary activity(const std::vector<std::pair<Seconds, int>>& weights) {
    std::vector<ActivityEvent> events;
    events.reserve(weights.size());
    for (const auto& [time, weight] : weights) {
        events.push_back({.timestamp = kNow + time, .model = "sonnet", .cwd = "/p", .tokens = {.input = weight}});
    }
    return ActivitySummary(std::move(events));
}

}  // namespace vorn::test
