#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/data/usage_window.hpp"

/// A day in the life of a user, in front of the application: what the client's counters show, and what Vorn ought to
/// make of it.
namespace vorn::test {

using namespace std::chrono_literals;

inline const Instant kMidnight = std::chrono::sys_days{std::chrono::year{2026} / 11 / 23};  // to Monday

/// How the client's counters move.
class Counters {
public:
    /// How much time the counters are moved by at once.
    static constexpr Seconds step = 5min;

    /// A reply after a session has ended starts the next.
    void startSession(Instant now) {
        if (!m_sessionResetsAt) {
            m_sessionResetsAt = now + 5h;
        }
    }
    /// One step of work; the week takes a twentieth of it.
    void work(double sessionPerHour) {
        if (m_session < 100) {
            m_session = std::min(100.0, m_session + sessionPerHour * (step / 1h));
            m_week += sessionPerHour / 20 * (step / 1h);
        }
    }
    void rollOver(Instant now) {
        if (m_sessionResetsAt && now >= *m_sessionResetsAt) {
            m_session = 0;
            m_sessionResetsAt.reset();
        }
        if (now >= m_weekResetsAt) {
            m_week = 0;
            m_weekResetsAt += 168h;
        }
    }
    /// Ahead of time, and without a new reset time.
    void resetSession() { m_session = 0; }

    /// Whole percents, as the client prints them.
    [[nodiscard]] std::vector<UsageWindow> read(Instant now) const {
        const auto percent = [](double value) {
            return std::floor(value + 1e-9);
        };
        return {{WindowKind::session(), percent(m_session), m_sessionResetsAt, now},
                {WindowKind::week(), percent(m_week), m_weekResetsAt, now}};
    }

private:
    double m_session = 0;
    std::optional<Instant> m_sessionResetsAt;
    double m_week = 88;
    Instant m_weekResetsAt = kMidnight + 18h;
};

enum class DayEvent : std::uint8_t {
    none,
    planForNoon,  ///< The user plans a reset of the session for noon.
    resetEarly,   ///< The client resets the session.
    redeem,       ///< The user has it reset.
};

struct DayPart {
    DayEvent event;         ///< At the beginning.
    Seconds until;          ///< Since midnight.
    double sessionPerHour;  ///< Used until then.
    const char* session;    ///< The verdicts and the head at `until`.
    const char* week;
    const char* head;
};
/// From 08:00 on.
inline constexpr DayPart kWorkingDay[] = {
    {DayEvent::none, 8h + 5min, 0, "Not started", "Lands near 94% at reset", "Room to speed up 2.2×"},
    {DayEvent::none, 8h + 10min, 12, "Plenty of room", "Lands near 93% at reset", "Room to speed up 2.2×"},
    {DayEvent::none, 9h, 12, "Lands around 60% at reset", "Lands near 93% at reset", "Room to speed up 1.8×"},
    {DayEvent::planForNoon, 11h, 12, "53% unused at the planned reset 12:00", "Lands near 93% at reset",
     "Room to speed up 2.8×"},
    // Lunch; the planned reset did not come.
    {DayEvent::none, 12h, 0, "Idle · nothing burning", "Lands near 92% at reset", "Room to speed up 3.3×"},
    {DayEvent::none, 13h + 10min, 0, "Not started", "Lands near 92% at reset", "Plenty of room to speed up"},
    // A heavy burst. One low reading may be stale, a second one is believed.
    {DayEvent::none, 14h, 48, "Limit in ~1h 15m at this pace", "Lands near 93% at reset",
     "Ease off to 30% of your current pace"},
    {DayEvent::resetEarly, 14h, 48, "Limit in ~1h 15m at this pace", "Lands near 93% at reset",
     "Ease off to 30% of your current pace"},
    {DayEvent::none, 14h + 5min, 48, "Plenty of room", "Lands near 92% at reset", "Plenty of room to speed up"},
    {DayEvent::none, 15h, 48, "Limit in ~1h 5m at this pace", "Lands near 96% at reset",
     "Ease off to 34% of your current pace"},
    {DayEvent::none, 16h + 30min, 48, "Limit reached · back at 18:10", "Lands near 97% at reset",
     "Limit reached — pause until it resets"},
    {DayEvent::none, 17h, 48, "Limit reached · back at 18:10", "Lands near 97% at reset",
     "Limit reached — pause until it resets"},
    {DayEvent::redeem, 17h + 5min, 12, "Plenty of room", "Lands near 97% at reset", "Plenty of room to speed up"},
    // The week starts afresh at 18:00, the session ten minutes later.
    {DayEvent::none, 18h, 12, "Lands around 14% at reset", "Plenty of room", "Plenty of room to speed up"},
    {DayEvent::none, 18h + 30min, 12, "Lands around 60% at reset", "Plenty of room", "Room to speed up 1.7×"},
    {DayEvent::none, 20h, 0, "Idle · nothing burning", "Plenty of room", "Idle — plenty of room"},
};

}  // namespace vorn::test
