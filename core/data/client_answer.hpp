#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/data/other_limits.hpp"
#include "core/data/usage_insights.hpp"
#include "core/data/usage_window.hpp"

namespace vorn {

/// What the client said of the limits when it was asked, in whichever form it was asked.
struct ClientAnswer {
    /// In the client's order, all from `DataSource::usageCommand`, observed at `fetchedAt`.
    std::vector<UsageWindow> windows;
    std::optional<OtherLimits> others{};      ///< Likewise; absent: the form does not tell of them.
    std::optional<UsageInsights> insights{};  ///< Absent: it did not say; the last ones stand.
    /// When the figures were fetched from the service; never later than `answeredAt`. Earlier where the client answered
    /// from its cache.
    Instant fetchedAt;
    Instant answeredAt;
    bool isFetchedAtCertain = true;  ///< Else they may be newer: not every client notes each time.
    /// It lists every limit that there is: one that it leaves out is gone.
    bool isComplete = false;
    /// A hash that tells accounts apart; empty where the account is not known.
    std::string account{};
    /// The user's plan: "max", "pro", …; empty where the answer does not say.
    std::string plan{};

    /// The client had no newer figures than these, which are older than what it keeps of its own accord: asking it
    /// again soon is of no use.
    [[nodiscard]] bool isStale() const { return isFetchedAtCertain && answeredAt - fetchedAt > Seconds{60}; }

    bool operator==(const ClientAnswer&) const = default;
};

}  // namespace vorn
