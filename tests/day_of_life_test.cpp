#include <gtest/gtest.h>

#include "core/analysis/assess.hpp"
#include "core/analysis/history_index.hpp"
#include "core/analysis/steer.hpp"
#include "core/data/history_store.hpp"
#include "core/data/reset_plan.hpp"
#include "core/data/usage_state.hpp"
#include "tests/support/temporary_directory.hpp"
#include "tests/support/working_day.hpp"
#include "ui/format/format.hpp"
#include "ui/format/head.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::Counters;
using test::DayEvent;
using test::kMidnight;

/// One day of readings: one every five minutes goes through the state into the history, and from there into verdicts.
class Day {
public:
    /// Works until `end` at this many session points per hour.
    void work(Instant end, double sessionPerHour) {
        for (; m_now < end; m_now += Counters::step) {
            m_counters.rollOver(m_now);
            if (sessionPerHour > 0) {
                m_counters.startSession(m_now);
            }
            read();
            m_counters.work(sessionPerHour);
        }
        m_counters.rollOver(m_now);
        read();
    }
    void happens(DayEvent event) {
        if (event == DayEvent::planForNoon) {
            m_plan.planned.push_back(
                {.id = "A", .date = kMidnight + 12h, .scope = PlannedReset::Scope::session, .note = {}});
        } else if (event != DayEvent::none) {
            m_counters.resetSession();
        }
        if (event == DayEvent::redeem) {
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
    void read() {
        m_state.merge(m_counters.read(m_now));
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
    for (const auto& part : test::kWorkingDay) {
        SCOPED_TRACE(formatIso8601(kMidnight + part.until));
        day.happens(part.event);
        day.work(kMidnight + part.until, part.sessionPerHour);
        const auto texts = day.texts();
        EXPECT_EQ(texts.session, part.session);
        EXPECT_EQ(texts.week, part.week);
        EXPECT_EQ(texts.head, part.head);
    }
}

}  // namespace
}  // namespace vorn
