#include "core/support/text.hpp"
#include "core/usage_command/usage_command_parser.hpp"
#include "fuzz/fuzz_target.hpp"
#include "fuzz/reading_checks.hpp"

/// The text that the usage command prints.
namespace vorn::fuzz {
namespace {

void requireResetInRange(const UsageWindow& window) {
    using std::chrono::sys_days;
    using std::chrono::year;
    require(!window.resetsAt ||
                (*window.resetsAt > sys_days{year{-1} / 1 / 1} && *window.resetsAt < sys_days{year{10001} / 1 / 1}),
            "a printed reset time has a year of four digits");
}

}  // namespace

void checkInput(std::string_view input) {
    const auto result = UsageCommandParser::parse(input, kNow);
    for (const UsageWindow& window : result.windows) {
        require(window.usedPercent >= 0, "a printed percentage has no sign");
        require(window.observedAt == kNow, "a reading was taken now");
        requireSound(window);
        requireResetInRange(window);
    }
    requireAssessable(result.windows, HistoryIndex());
    if (result.insights) {
        requireSound(*result.insights);
    }
    require(result.isSubscription || result.windows.empty(), "a window tells of a subscription");
    require(UsageCommandParser::parse(repairUtf8(input), kNow) == result, "repairing the text beforehand is no matter");
}

}  // namespace vorn::fuzz
