#include <cmath>

#include <gtest/gtest.h>

#include "core/analysis/assess.hpp"
#include "core/analysis/history_index.hpp"
#include "core/analysis/steer.hpp"
#include "core/data/history_store.hpp"
#include "core/data/reset_plan.hpp"
#include "core/data/usage_state.hpp"
#include "tests/support/temporary_directory.hpp"
#include "ui/format/format.hpp"
#include "ui/format/head.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

const Instant kMidnight = std::chrono::sys_days{std::chrono::year{2026} / 11 / 23};  // to Monday

/// How the client's counters move: what a reading shows at one moment.
struct Counters {
    double session = 0;
    std::optional<Instant> sessionResetsAt;
    double week = 88;
    Instant weekResetsAt = kMidnight + 18h;
};

enum Event { noEvent, planForNoon, resetEarly, redeem };

/// One day as the application lives through it: a reading every five minutes goes through the state into the history,
/// and from there into verdicts.
class Day {
public:
    /// Works until `end` at this many session points per hour. A reply after a session has ended starts the next.
    void work(Instant end, double sessionPerHour) {
        for (; m_now < end; m_now += kStep) {
            rollOver();
            if (sessionPerHour > 0 && !m_counters.sessionResetsAt) {
                m_counters.sessionResetsAt = m_now + 5h;
            }
            read();
            if (m_counters.session < 100) {
                m_counters.session = std::min(100.0, m_counters.session + sessionPerHour * (kStep / 1h));
                m_counters.week += sessionPerHour / 20 * (kStep / 1h);
            }
        }
        rollOver();
        read();
    }
    void happens(Event event) {
        if (event == planForNoon) {
            m_plan.planned.push_back(
                {.id = "A", .date = kMidnight + 12h, .scope = PlannedReset::Scope::session, .note = {}});
        } else if (event != noEvent) {
            m_counters.session = 0;  // without a new reset time
        }
        if (event == redeem) {
            m_state.expectReset(std::vector{WindowKind::session()});
        }
    }

    struct Texts {
        std::string session;
        std::string week;
        std::string head;
    };
    Texts texts() {
        const std::vector<HistorySample> history = m_history.all();
        m_index.update(history);
        std::vector<WindowAssessment> assessments;
        for (const UsageWindow& window : m_state.current(m_now)) {
            const MatchingSamples samples = m_index.matching(window);
            assessments.push_back(VornEngine::assess(
                window, {.history = samples, .now = m_now, .plannedResetAt = m_plan.horizon(window, m_now)}));
        }
        const auto steer = VornEngine::steer(assessments, m_steered, 0.1);
        m_steered = steer ? std::optional(steer->kind) : std::nullopt;
        const auto head = Format::head(VornEngine::headline(assessments), steer, m_now);
        return {Format::verdict(assessments.at(0), m_now), Format::verdict(assessments.at(1), m_now),
                head ? head->headline : ""};
    }

private:
    static constexpr Seconds kStep = 5min;

    void rollOver() {
        if (m_counters.sessionResetsAt && m_now >= *m_counters.sessionResetsAt) {
            m_counters.session = 0;
            m_counters.sessionResetsAt.reset();
        }
        if (m_now >= m_counters.weekResetsAt) {
            m_counters.week = 0;
            m_counters.weekResetsAt += 168h;
        }
    }

    /// Whole percents, as the client prints them.
    void read() {
        const auto percent = [](double value) {
            return std::floor(value + 1e-9);
        };
        const std::vector<UsageWindow> incoming{
            {WindowKind::session(), percent(m_counters.session), m_counters.sessionResetsAt, m_now},
            {WindowKind::week(), percent(m_counters.week), m_counters.weekResetsAt, m_now}};
        m_state.merge(incoming);
        m_history.record(m_state.current(m_now), m_now);
    }

    test::TemporaryDirectory m_directory;
    UsageState m_state;
    HistoryStore m_history{m_directory.path() / "history.jsonl"};
    HistoryIndex m_index;
    ResetPlan m_plan;
    Counters m_counters;
    std::optional<WindowKind> m_steered;
    Instant m_now = kMidnight + 8h;
};

TEST(DayOfLife, saysTheRightThingAtEachHour) {
    const test::ScopedEnvironment zone("TZ", "UTC");
    const test::ScopedEnvironment locale("LC_ALL", "C");
    Day day;
    const struct {
        Event event;            ///< At the beginning.
        Seconds until;          ///< Since midnight.
        double sessionPerHour;  ///< Until then; the week takes a twentieth of it.
        const char* session;    ///< The verdicts and the head at `until`.
        const char* week;
        const char* head;
    } hours[] = {
        {noEvent, 8h + 5min, 0, "Not started", "Lands near 94% at reset", "Room to speed up 2.2×"},
        {noEvent, 8h + 10min, 12, "Plenty of room", "Lands near 93% at reset", "Room to speed up 2.2×"},
        {noEvent, 9h, 12, "Lands around 60% at reset", "Lands near 93% at reset", "Room to speed up 1.8×"},
        {planForNoon, 11h, 12, "53% unused at the planned reset 12:00", "Lands near 93% at reset",
         "Room to speed up 2.8×"},
        // Lunch; the planned reset did not come.
        {noEvent, 12h, 0, "Idle · nothing burning", "Lands near 92% at reset", "Room to speed up 3.3×"},
        {noEvent, 13h + 10min, 0, "Not started", "Lands near 92% at reset", "Plenty of room to speed up"},
        // A heavy burst. One low reading may be stale, a second one is believed.
        {noEvent, 14h, 48, "Limit in ~1h 15m at this pace", "Lands near 93% at reset",
         "Ease off to 30% of your current pace"},
        {resetEarly, 14h, 48, "Limit in ~1h 15m at this pace", "Lands near 93% at reset",
         "Ease off to 30% of your current pace"},
        {noEvent, 14h + 5min, 48, "Plenty of room", "Lands near 92% at reset", "Plenty of room to speed up"},
        {noEvent, 15h, 48, "Limit in ~1h 5m at this pace", "Lands near 96% at reset",
         "Ease off to 34% of your current pace"},
        {noEvent, 16h + 30min, 48, "Limit reached · back at 18:10", "Lands near 97% at reset",
         "Limit reached — pause until it resets"},
        {noEvent, 17h, 48, "Limit reached · back at 18:10", "Lands near 97% at reset",
         "Limit reached — pause until it resets"},
        {redeem, 17h + 5min, 12, "Plenty of room", "Lands near 97% at reset", "Plenty of room to speed up"},
        // The week starts afresh at 18:00, the session ten minutes later.
        {noEvent, 18h, 12, "Lands around 14% at reset", "Plenty of room", "Plenty of room to speed up"},
        {noEvent, 18h + 30min, 12, "Lands around 60% at reset", "Plenty of room", "Room to speed up 1.7×"},
        {noEvent, 20h, 0, "Idle · nothing burning", "Plenty of room", "Idle — plenty of room"},
    };
    for (const auto& hour : hours) {
        SCOPED_TRACE(formatIso8601(kMidnight + hour.until));
        day.happens(hour.event);
        day.work(kMidnight + hour.until, hour.sessionPerHour);
        const auto texts = day.texts();
        EXPECT_EQ(texts.session, hour.session);
        EXPECT_EQ(texts.week, hour.week);
        EXPECT_EQ(texts.head, hour.head);
    }
}

}  // namespace
}  // namespace vorn
