#include "demo/demo.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "demo/working_week.hpp"

namespace vorn::demo {
namespace {

using namespace std::chrono_literals;

/// Where each limit stands in a scenario. Percentages as the sources would print them.
struct Setting {
    Seconds sessionAge;
    double sessionUsed;  ///< Above 100: the limit was reached some minutes ago.
    Seconds weekAge;
    double weekUsed;
    double modelUsed;
    std::optional<Seconds> plannedResetIn{};
};

constexpr Seconds kDay = 24h;

Setting settingOf(Scenario scenario) {
    switch (scenario) {
        case Scenario::comfortable:
            return {.sessionAge = 150min, .sessionUsed = 24, .weekAge = 4.6 * kDay, .weekUsed = 30, .modelUsed = 9};
        case Scenario::watch:
            return {.sessionAge = 165min, .sessionUsed = 50, .weekAge = 4.9 * kDay, .weekUsed = 41, .modelUsed = 14};
        case Scenario::atRisk:
            return {.sessionAge = 180min, .sessionUsed = 72, .weekAge = 5.2 * kDay, .weekUsed = 58, .modelUsed = 21};
        case Scenario::limited:
            return {.sessionAge = 178min, .sessionUsed = 104, .weekAge = 5.6 * kDay, .weekUsed = 66, .modelUsed = 24};
        case Scenario::plannedReset:
            break;
    }
    return {.sessionAge = 130min,
            .sessionUsed = 19,
            .weekAge = 3.3 * kDay,
            .weekUsed = 57,
            .modelUsed = 18,
            .plannedResetIn = 27h};
}

const char* const kModel = "Sonnet";
/// The last reading came a moment ago.
constexpr Seconds kReadingAge = 40s;
/// How often a client that runs in the background is asked, and how often an unchanged reading is kept.
constexpr Seconds kHistoryStep = 10min;

/// A tenth of a point: finer than any source reports.
double rounded(double percent) {
    return std::round(percent * 10) / 10;
}

/// The limits of somebody who works through `WorkingWeek`, at any moment of it.
class Limits {
public:
    Limits(const Setting& setting, const WorkingWeek& work, Instant now)
        : m_setting(setting),
          m_work(work),
          m_now(now),
          m_sessionStart(now - setting.sessionAge),
          m_weekStart(now - setting.weekAge) {}

    /// The reading of every limit that exists at that moment.
    [[nodiscard]] std::vector<UsageWindow> at(Instant moment) const {
        std::vector<UsageWindow> windows;
        if (auto session = sessionAt(moment)) {
            windows.push_back(*std::move(session));
        }
        windows.push_back(weekAt(WindowKind::week(), m_setting.weekUsed, moment));
        windows.push_back(weekAt(WindowKind::weekModel(kModel), m_setting.modelUsed, moment));
        return windows;
    }

private:
    [[nodiscard]] std::optional<UsageWindow> sessionAt(Instant moment) const {
        // Earlier sessions end where the next one begins; one in which nobody worked never was.
        const Seconds length = WindowKind::session().length();
        const double index = std::floor((moment - m_sessionStart) / length);
        const Instant start = m_sessionStart + index * length;
        const double whole = m_work.between(start, std::min(start + length, m_now));
        const double soFar = m_work.between(start, moment);
        if (soFar <= 0) {
            return std::nullopt;
        }
        constexpr double kEarlierFullest = 78;
        const double target =
            start == m_sessionStart ? m_setting.sessionUsed : kEarlierFullest * whole / m_work.mostWithin(length);
        return reading(WindowKind::session(), target * soFar / whole, start + length, moment);
    }

    [[nodiscard]] UsageWindow weekAt(const WindowKind& kind, double usedNow, Instant moment) const {
        const double perWork = usedNow / m_work.between(m_weekStart, m_now);
        if (moment >= m_weekStart) {
            return reading(kind, perWork * m_work.between(m_weekStart, moment), m_weekStart + kind.length(), moment);
        }
        // The week before had been going on for longer than the history reaches back.
        constexpr double kBefore = 0.8;
        const double used = usedNow * kBefore + perWork * m_work.between(m_work.start(), moment);
        return reading(kind, used, m_weekStart, moment);
    }

    static UsageWindow reading(const WindowKind& kind, double used, Instant resetsAt, Instant moment) {
        return {
            .kind = kind, .usedPercent = std::min(rounded(used), 100.0), .resetsAt = resetsAt, .observedAt = moment};
    }

    const Setting& m_setting;
    const WorkingWeek& m_work;
    Instant m_now;
    Instant m_sessionStart;
    Instant m_weekStart;
};

std::vector<HistorySample> historyOf(const Limits& limits, const WorkingWeek& work, Instant last) {
    std::vector<HistorySample> history;
    for (Instant moment = work.start(); moment <= last; moment += kHistoryStep) {
        for (const UsageWindow& window : limits.at(moment)) {
            history.push_back(HistorySample::of(window));
        }
    }
    for (const UsageWindow& window : limits.at(last)) {
        history.push_back(HistorySample::of(window));
    }
    return history;
}

UsageInsights insightsAt(Instant now) {
    return {
        .periods = {{.label = "Last 24h",
                     .requests = 214,
                     .sessions = 11,
                     .findings = {{64, "came from subagent-heavy sessions"}, {38, "was at >150k context"}},
                     .topSkills = {{"/review", 21}, {"/tests", 8}},
                     .topSubagents = {{"explorer", 27}}},
                    {.label = "Last 7d",
                     .requests = 1290,
                     .sessions = 58,
                     .findings = {{57, "was at >150k context"},
                                  {41, "came from subagent-heavy sessions"},
                                  {23, "came from sessions active for 8+ hours"}},
                     .topSkills = {{"/review", 17}, {"/tests", 11}, {"/release", 3}},
                     .topSubagents = {{"explorer", 22}, {"reviewer", 6}}}},
        .observedAt = now,
    };
}

ResetPlan planOf(const Setting& setting, Instant now) {
    if (!setting.plannedResetIn) {
        return {};
    }
    return {.planned = {{.id = "5B0C1E7A-3D52-4F0E-9A41-7C2D8E6F1A03",
                         .date = std::chrono::floor<std::chrono::minutes>(now + *setting.plannedResetIn),
                         .scope = PlannedReset::Scope::week,
                         .note = "announced for the launch"}},
            .banked = 1};
}

}  // namespace

const char* name(Scenario scenario) {
    constexpr std::array kNames{"comfortable", "watch", "at-risk", "limited", "planned-reset"};
    return kNames.at(static_cast<std::size_t>(scenario));
}

std::optional<Scenario> scenarioNamed(std::string_view wanted) {
    const auto* found = std::ranges::find_if(allScenarios, [&](Scenario scenario) { return wanted == name(scenario); });
    return found == allScenarios.end() ? std::nullopt : std::optional(*found);
}

Demo makeDemo(Scenario scenario, Instant now) {
    const Setting setting = settingOf(scenario);
    const WorkingWeek work(now, setting.sessionAge);
    const Limits limits(setting, work, now);
    const Instant read = now - kReadingAge;
    return {
        .windows = limits.at(read),
        .insights = insightsAt(read),
        .history = historyOf(limits, work, read),
        .activity = work.replies(now - WindowKind::week().length()),
        .plan = planOf(setting, now),
    };
}

}  // namespace vorn::demo
