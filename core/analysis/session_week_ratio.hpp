#pragma once

#include <optional>
#include <span>

#include "core/data/history_sample.hpp"

namespace vorn {

/// What a session costs of the week, learnt from how the two climbed together.
struct SessionWeekRatio {
    double weekPointsPerSessionPoint = 0;  ///< Week percentage points used per session percentage point.
    int sessions = 0;                      ///< Session instances that contributed.
    double sessionPoints = 0;              ///< Their total rise, in percentage points.

    /// The week percent that one full session costs.
    [[nodiscard]] double weekPercentPerSession() const;
    /// Full sessions that fit into a week; +infinity when a session costs nothing.
    [[nodiscard]] double sessionsPerWeek() const;
    /// Full sessions that fit into the rest of a week of which `weekUsed` percent are used; +infinity when a session
    /// costs nothing.
    [[nodiscard]] double sessionsLeft(double weekUsed) const;

    bool operator==(const SessionWeekRatio&) const = default;
};

namespace VornEngine {

/// Empty with fewer than `minimumSessionPoints` to learn from; that should be positive, since without any session
/// points the ratio is not a number. Walks the whole history: call it when samples were added, not on every tick.
std::optional<SessionWeekRatio> sessionWeekRatio(std::span<const HistorySample> history, double minimumSessionPoints);

}  // namespace VornEngine
}  // namespace vorn
