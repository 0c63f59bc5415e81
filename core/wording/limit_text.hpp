#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/data/other_limits.hpp"

/// What is said of limits that are no windows.
namespace vorn::Format {

/// "$15.40", "15.40 EUR", without a currency "15.40". `hundredths` of its unit.
std::string money(double hundredths, const std::string& currency);

/// "$15.40 of $20.00 spent", without a cap "$15.40 spent".
std::string spentText(const Credits& credits);

/// "1540 of 2000 used · resets in 2d, Wed 14:00"; as much of it as is known.
std::string otherLimitText(const OtherLimit& limit, Instant now);

/// One limit that is no window, as it is shown.
struct LimitLine {
    std::string title;                    ///< "Credits", "Spend limit"
    std::string text;                     ///< "$15.40 of $20.00 spent"
    std::optional<double> usedPercent{};  ///< For a bar.
    bool isReached = false;
    bool operator==(const LimitLine&) const = default;
};
/// Credits first, where they are switched on or something was spent, then the others in their order.
std::vector<LimitLine> limitLines(const OtherLimits& others, Instant now);

}  // namespace vorn::Format
