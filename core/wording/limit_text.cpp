#include "core/wording/limit_text.hpp"

#include <array>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "core/wording/format.hpp"
#include "core/wording/phrase.hpp"

namespace vorn::Format {

std::string money(double hundredths, const std::string& currency) {
    constexpr std::array<std::pair<const char*, const char*>, 3> kSigns{{{"USD", "$"}, {"EUR", "€"}, {"GBP", "£"}}};
    if (!std::isfinite(hundredths)) {
        return "—";
    }
    const std::string amount = fmt::format("{:.2f}", hundredths / 100);
    for (const auto& [code, sign] : kSigns) {
        if (currency == code) {
            return sign + amount;
        }
    }
    return currency.empty() ? amount : amount + " " + currency;
}

std::string spentText(const Credits& credits) {
    const std::string spent = money(credits.spent, credits.currency);
    return (credits.cap ? spent + " of " + money(*credits.cap, credits.currency) : spent) + " spent";
}

std::string otherLimitText(const OtherLimit& limit, Instant now) {
    const bool isRunning = limit.resetsAt && *limit.resetsAt > now;
    return joined(
        {limit.used && limit.cap ? fmt::format("{:.0f} of {:.0f} used", *limit.used, *limit.cap) : std::string(),
         isRunning ? "resets in " + duration(*limit.resetsAt - now) + ", " + clock(*limit.resetsAt, now)
                   : std::string()});
}

std::vector<LimitLine> limitLines(const OtherLimits& others, Instant now) {
    constexpr double kLimit = 100.0;  // percent
    std::vector<LimitLine> lines;
    if (const auto& credits = others.credits; credits && (credits->isEnabled || credits->spent > 0)) {
        lines.push_back({.title = "Credits",
                         .text = spentText(*credits),
                         .usedPercent = credits->usedPercent,
                         .isReached = credits->usedPercent.value_or(0) >= kLimit});
    }
    for (const OtherLimit& limit : others.limits) {
        const bool isOver = limit.resetsAt && *limit.resetsAt <= now;
        lines.push_back({.title = limit.name,
                         .text = otherLimitText(limit, now),
                         .usedPercent = limit.usedPercent,
                         .isReached = limit.usedPercent >= kLimit && !isOver});
    }
    return lines;
}

}  // namespace vorn::Format
