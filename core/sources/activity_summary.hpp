#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/sources/activity_event.hpp"

namespace vorn {

/// Local activity in order of time, and the questions asked of it. Immutable.
class ActivitySummary {
public:
    /// A project's or model family's part of the whole.
    struct Slice {
        std::string name;   ///< "Other" for the remainder.
        double weight = 0;  ///< Cost-weighted tokens.
        double share = 0;   ///< 0..1 of all events considered.
        bool operator==(const Slice&) const = default;
    };

    struct Bucket {
        Instant start;
        double weight = 0;  ///< Cost-weighted tokens; 0 in an empty bucket.
        bool operator==(const Bucket&) const = default;
    };

    ActivitySummary() = default;
    /// Sorts by time; equal times keep their order.
    explicit ActivitySummary(std::vector<ActivityEvent> events);

    [[nodiscard]] const std::vector<ActivityEvent>& events() const { return m_events; }
    [[nodiscard]] std::optional<Instant> lastEventAt() const;

    /// The events with `since` <= time < `until`; empty when `until` lies first.
    [[nodiscard]] std::span<const ActivityEvent> events(Instant since, Instant until) const;
    /// Their summed weight. Takes logarithmic time.
    [[nodiscard]] double weight(Instant since, Instant until) const;

    /// Buckets of `width` from `from` on; the last may reach past `to`. Empty when `to` is not later than `from` or
    /// `width` is not positive.
    [[nodiscard]] std::vector<Bucket> timeline(Instant from, Instant to, Seconds width) const;

    /// The `limit` largest, then "Other" for the rest, if any. Shares add up to 1.
    [[nodiscard]] std::vector<Slice> projects(Instant since, std::size_t limit) const;
    [[nodiscard]] std::vector<Slice> models(Instant since, std::size_t limit) const;

    /// A display name for a model identifier: "claude-opus-5-5" gives "Opus".
    static std::string modelFamily(std::string_view model);

    bool operator==(const ActivitySummary& other) const { return m_events == other.m_events; }

private:
    std::vector<ActivityEvent> m_events;
    std::vector<double> m_weightUpTo;  ///< m_weightUpTo[i]: weight of the first i events.
};

}  // namespace vorn
