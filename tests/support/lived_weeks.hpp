#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

#include "core/data/activity/activity_summary.hpp"
#include "core/data/history_sample.hpp"
#include "core/support/zone_offsets.hpp"

/// Weeks of somebody who works by the clock, as Vorn comes to know them.
namespace vorn::test {

using namespace std::chrono_literals;

/// A Monday.
inline const Instant kFirstDay = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2};

struct Habits {
    int firstHour = 9;
    int lastHour = 17;         ///< Work ends when it begins.
    int days = 5;              ///< From Monday.
    double pointsPerHour = 2;  ///< Of the week limit.
    bool isHere = true;        ///< Else on another computer: there are readings, but no events.
};

/// Readings and events in order of time; `live` appends to them.
struct Life {
    std::vector<HistorySample> readings;
    std::vector<ActivityEvent> events;
    double week = 0;  ///< Percent.
    double session = 0;
    Instant weekReset = kFirstDay;
    Instant sessionReset = kFirstDay;

    [[nodiscard]] ActivitySummary activity() const { return ActivitySummary(events); }
};

/// Lives from `from` to `to` in steps of five minutes: a reply in each while at work, and readings from 8 to 22
/// o'clock. Weeks end on Mondays at midnight UTC. What comes after a limit is refused.
inline void live(Life& life, const Habits& habits, const ZoneOffsets& zone, Instant from, Instant to) {
    for (Instant now = from; now < to; now += 5min) {
        if (now >= life.weekReset) {
            life.week = 0;
            life.weekReset += std::ceil((now - life.weekReset + 1s) / 168h) * 168h;
        }
        const int hour = hourOfWeek(zone.hour(now));
        const bool isAtWork = hour / 24 < habits.days && hour % 24 >= habits.firstHour && hour % 24 < habits.lastHour;
        const bool isSessionFull = now < life.sessionReset && life.session >= 100;
        if (isAtWork && life.week < 100 && !isSessionFull) {
            if (now >= life.sessionReset) {
                life.session = 0;
                life.sessionReset = now + 5h;
            }
            life.week = std::min(100.0, life.week + habits.pointsPerHour / 12);
            life.session = std::min(100.0, life.session + habits.pointsPerHour / 12 / 0.125);
            if (habits.isHere) {
                life.events.push_back({.timestamp = now, .model = "sonnet", .cwd = "/p", .tokens = {.input = 1000}});
            }
        }
        if (hour % 24 >= 8 && hour % 24 < 22) {
            if (now < life.sessionReset) {
                life.readings.push_back({"session", std::floor(life.session), life.sessionReset, now + 1s});
            }
            life.readings.push_back({"week", std::floor(life.week), life.weekReset, now + 1s});
        }
    }
}

/// The newest reading of a kind.
inline UsageWindow newest(const Life& life, const WindowKind& kind) {
    const auto last = std::find_if(life.readings.rbegin(), life.readings.rend(),
                                   [&](const HistorySample& sample) { return sample.kindKey == kind.key(); });
    return {.kind = kind, .usedPercent = last->usedPercent, .resetsAt = last->resetsAt, .observedAt = last->observedAt};
}

}  // namespace vorn::test
