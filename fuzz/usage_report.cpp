#include "core/usage_command/usage_report.hpp"

#include <algorithm>
#include <cmath>

#include "fuzz/fuzz_target.hpp"
#include "fuzz/reading_checks.hpp"

/// The lines that the client prints when it is asked for the structured form.
namespace vorn::fuzz {
namespace {

void requireSound(const OtherLimits& others) {
    for (const OtherLimit& limit : others.limits) {
        require(std::isfinite(limit.usedPercent) && limit.usedPercent >= 0, "a limit has a percentage");
        require(!limit.name.empty(), "a limit has a name");
        requireUtf8(limit.name);
    }
    if (others.credits) {
        require(std::isfinite(others.credits->spent) && others.credits->spent >= 0, "what was spent is an amount");
        requireUtf8(others.credits->currency);
    }
}

}  // namespace

void checkInput(std::string_view input) {
    const UsageReport report = UsageReport::read(input, kNow);
    const ReportedLimits& limits = report.limits;
    require(limits.windows.size() <= 100 && limits.others.limits.size() <= 100, "limits are bounded");
    for (const UsageWindow& window : limits.windows) {
        require(window.usedPercent >= 0 && window.observedAt == kNow, "a window is one of now");
        fuzz::requireSound(window);
    }
    requireAssessable(limits.windows, HistoryIndex());
    requireSound(limits.others);
    if (report.insights) {
        fuzz::requireSound(*report.insights);
    }
    requireUtf8(report.plan);
    require(report.outcome != UsageReport::Outcome::figures || !limits.windows.empty() || !limits.others.isEmpty(),
            "figures are figures of something");
}

}  // namespace vorn::fuzz
