#pragma once

#include <vector>

#include "core/data/activity/activity_event.hpp"

namespace vorn::demo {

/// Eight days of an invented person's work, in steps of five minutes, up to the middle of a working day. Built by a
/// generator of its own, so that the same moment gives the same week with every standard library.
class WorkingWeek {
public:
    /// Nobody pauses during the last `sessionAge`, and the last minutes are of average intensity, so that the pace of
    /// the running session is what it looks like.
    WorkingWeek(Instant now, Seconds sessionAge);

    [[nodiscard]] Instant start() const { return m_start; }
    /// Cost-weighted tokens of work between two moments; 0 when `until` lies first.
    [[nodiscard]] double between(Instant since, Instant until) const;
    /// The most work that any stretch of that length holds.
    [[nodiscard]] double mostWithin(Seconds length) const;
    /// The work as replies, in order of time.
    [[nodiscard]] std::vector<ActivityEvent> replies(Instant since) const;

private:
    [[nodiscard]] double upTo(Instant moment) const;

    Instant m_start;
    std::vector<double> m_steps;  ///< Cost-weighted tokens of each step.
    std::vector<double> m_upTo;   ///< m_upTo[i]: those of the first i steps.
};

}  // namespace vorn::demo
