#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "core/support/date_coding.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// What consumed the quota, as the usage command prints it below the limits. A new record replaces the old one whole.
struct UsageInsights {
    /// A statement with the share of use it is about: "71%", "of your usage came from …".
    struct Finding {
        double percent = 0;  ///< 0..100 as printed
        std::string text;
        bool operator==(const Finding&) const = default;
    };

    /// A skill or subagent and its share of use.
    struct Share {
        std::string name;
        double percent = 0;  ///< 0..100 as printed
        bool operator==(const Share&) const = default;
    };

    struct Period {
        std::string label;  ///< The heading as printed, e.g. "Last 24h".
        std::optional<std::int64_t> requests;
        std::optional<std::int64_t> sessions;
        std::vector<Finding> findings;
        std::vector<Share> topSkills;
        std::vector<Share> topSubagents;
        bool operator==(const Period&) const = default;
    };

    std::vector<Period> periods;  ///< In printed order.
    Instant observedAt;           ///< When the command's output was read.
    bool operator==(const UsageInsights&) const = default;
};

nlohmann::json encode(const UsageInsights& insights, DateCoding dates);
/// Throws DecodingError.
UsageInsights decodeUsageInsights(const nlohmann::json& value, DateCoding dates);

}  // namespace vorn
