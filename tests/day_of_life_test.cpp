#include <gtest/gtest.h>

#include "core/analysis/answer.hpp"
#include "core/data/history/history_store.hpp"
#include "core/data/ledger.hpp"
#include "core/wording/format.hpp"
#include "core/wording/head.hpp"
#include "tests/support/temporary_directory.hpp"
#include "tests/support/working_day.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::Counters;
using test::DayEvent;
using test::kMidnight;

/// One day of readings: one every five minutes goes through the ledger into the history, and from there into verdicts.
class Day {
public:
    Day() { m_ledger.begin({}, m_now); }
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
            m_ledger.announce({WindowKind::session()});
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
        const Answer answer = VornEngine::formAnswer(
            {.windows = m_ledger.state().current(m_now), .history = &m_index, .plan = m_plan, .steeredBy = m_steered},
            m_now);
        m_steered = answer.steer ? std::optional(answer.steer->kind) : std::nullopt;
        return {Format::verdict(answer.cards.at(0).assessment, m_now),
                Format::verdict(answer.cards.at(1).assessment, m_now), Format::head(answer).value().headline};
    }

private:
    void read() { m_history.record(m_ledger.takeAnswer({.windows = m_counters.read(m_now)}, m_now).toRecord, m_now); }

    test::TemporaryDirectory m_directory;
    Ledger m_ledger;
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
