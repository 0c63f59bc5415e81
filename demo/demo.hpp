#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "core/data/activity/activity_event.hpp"
#include "core/data/history_sample.hpp"
#include "core/data/reset_plan.hpp"
#include "core/data/usage_insights.hpp"

/// Invented readings for showing what Vorn does where there are none.
namespace vorn::demo {

/// Named after the state in which the most urgent window stands.
enum class Scenario : std::uint8_t { comfortable, watch, atRisk, limited, plannedReset };
inline constexpr std::array allScenarios{Scenario::comfortable, Scenario::watch, Scenario::atRisk, Scenario::limited,
                                         Scenario::plannedReset};

/// "comfortable", "watch", "at-risk", "limited", "planned-reset": as command lines spell it.
const char* name(Scenario scenario);
std::optional<Scenario> scenarioNamed(std::string_view name);

/// A week in the life of somebody who does not exist, up to a moment of a working day.
struct Demo {
    std::vector<UsageWindow> windows;  ///< By kind.
    UsageInsights insights;
    std::vector<HistorySample> history;   ///< Eight days, in order of time.
    std::vector<ActivityEvent> activity;  ///< Seven days, in order of time.
    ResetPlan plan;
};

/// The data of one scenario. The same moment gives the same data; another moment shifts it.
Demo makeDemo(Scenario scenario, Instant now);

}  // namespace vorn::demo
