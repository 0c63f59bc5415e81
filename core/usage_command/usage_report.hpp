#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/data/usage_insights.hpp"
#include "core/usage_command/reported_limits.hpp"

namespace vorn {

/// What the client answers to the request "get_usage", the structured form of what /usage prints.
struct UsageReport {
    enum class Outcome : std::uint8_t {
        figures,
        noFigures,   ///< There is a plan, but its figures could not be had just now.
        noPlan,      ///< Nobody is signed in to a plan, or an API key is used.
        refused,     ///< The client does not know the request.
        unreadable,  ///< There is no answer, or none of a known form.
    };

    /// The fixed arguments: print mode, one JSON object a line in and out, no session kept.
    static const std::vector<std::string>& arguments();
    /// The request, for standard input.
    static const std::string& request();
    /// Finds the answer among the lines that were printed; everything is as observed at `now`.
    static UsageReport read(std::string_view output, Instant now);

    Outcome outcome = Outcome::unreadable;
    ReportedLimits limits{};  ///< Empty unless there are figures.
    std::string plan{};       ///< "max", "pro", …; else empty.
    std::optional<UsageInsights> insights{};
    bool hidesBreakdown = false;  ///< There is a breakdown, which only the text tells.
};

}  // namespace vorn
