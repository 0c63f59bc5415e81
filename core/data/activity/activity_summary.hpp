#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/data/activity/activity_event.hpp"
#include "core/data/refused_turn.hpp"

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
    explicit ActivitySummary(std::vector<ActivityEvent> events, std::vector<RefusedTurn> refusals = {});

    [[nodiscard]] const std::vector<ActivityEvent>& events() const { return m_events; }
    /// The turns that the service refused, by time. No question below counts them.
    [[nodiscard]] const std::vector<RefusedTurn>& refusals() const { return m_refusals; }
    [[nodiscard]] std::optional<Instant> lastEventAt() const;

    /// The events with `since` <= time < `until`; empty when `until` lies first.
    [[nodiscard]] std::span<const ActivityEvent> events(Instant since, Instant until) const;
    /// The summed weight of the events with `since` <= time < `until`. Takes logarithmic time.
    [[nodiscard]] double weight(Instant since, Instant until) const;

    /// The most buckets that are made; more would only cost memory.
    static constexpr std::size_t kMaximumBuckets = 1'000'000;
    /// Buckets of `width` from `from` on; the last may reach past `to`. Empty when `to` is not later than `from`,
    /// `width` is not positive, one of them is not finite, or there would be more than `kMaximumBuckets`.
    [[nodiscard]] std::vector<Bucket> timeline(Instant from, Instant to, Seconds width) const;

    // Which projects or models the events from `since` on belong to: the `limit` largest, by name where equal, then
    // "Other" for the rest, if any. Shares add up to 1. Empty when nothing weighs anything.
    [[nodiscard]] std::vector<Slice> projects(Instant since, std::size_t limit) const;
    [[nodiscard]] std::vector<Slice> models(Instant since, std::size_t limit) const;

    /// A display name for a model identifier: "claude-opus-5-5" gives "Opus". Letters and digits are the ASCII ones, as
    /// in every identifier there is.
    static std::string modelFamily(std::string_view model);

    bool operator==(const ActivitySummary& other) const {
        return m_events == other.m_events && m_refusals == other.m_refusals;
    }

private:
    [[nodiscard]] std::size_t indexOf(Instant instant) const;
    /// Sixty times the weight of the events from `since` on, summed for each of their texts.
    [[nodiscard]] std::unordered_map<std::string_view, double> sixtiethsBy(SharedText ActivityEvent::*text,
                                                                           Instant since) const;

    std::vector<ActivityEvent> m_events;
    std::vector<RefusedTurn> m_refusals;
    std::vector<double> m_sixtiethsUpTo;  ///< [i]: sixty times the weight of the first i events; empty without events.
};

}  // namespace vorn
