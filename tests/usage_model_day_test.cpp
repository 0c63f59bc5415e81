#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/analysis/assess.hpp"
#include "core/wording/format.hpp"
#include "core/wording/head.hpp"
#include "model/notifier.hpp"
#include "platform/notification_center.hpp"
#include "tests/support/model_world.hpp"
#include "tests/support/working_day.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::Counters;
using test::DayEvent;
using test::kMidnight;
using testing::ElementsAre;
using Phase = UsageModel::Phase::Kind;

constexpr const char* kSessionReset = "6F9619FF-8B86-D011-B42D-00CF4FC964FF";

/// Permits everything and keeps the titles.
class TitleCenter final : public NotificationCenter {
public:
    void requestAuthorization(std::function<void(bool)> onAnswer) override { onAnswer(true); }
    void post(const Notice& notice) override { titles.push_back(notice.title.toStdString()); }
    [[nodiscard]] QString problem() const override { return {}; }

    std::vector<std::string> titles;
};

/// The working day, with the application running.
class ModelDay : public test::ModelWorld {
public:
    ModelDay() : ModelWorld(kMidnight + 8h) {
        client = [this] {
            return ClientAnswer{.windows = m_counters.read(now), .insights = {}};
        };
        QObject::connect(model.get(), &UsageModel::changed, [this] {
            recomputes.push_back(now);
            EXPECT_EQ(model->now(), now);
            notifier.evaluate(model->assessments(), preferences, now);
        });
        notifier.requestAuthorization([] {});
    }

    /// Works until `end` at this many session points per hour, with somebody looking at the beginning.
    void work(Instant end, double sessionPerHour) {
        if (now == end) {
            model->probe();
            return;
        }
        begin(sessionPerHour);
        model->probe();
        while (now < end) {
            m_counters.work(sessionPerHour);
            pass(Counters::step - UsageModel::tickInterval);
            now += UsageModel::tickInterval;
            m_counters.rollOver(now);
            if (now < end) {
                begin(sessionPerHour);
            }
            tick();
        }
    }
    void happens(DayEvent event) {
        if (event == DayEvent::planForNoon) {
            model->addPlannedReset(
                {.id = kSessionReset, .date = kMidnight + 12h, .scope = PlannedReset::Scope::session, .note = {}});
        } else if (event != DayEvent::none) {
            m_counters.resetSession();
        }
        if (event == DayEvent::redeem) {
            model->redeemReset(PlannedReset::Scope::session);
        }
    }

    std::vector<Instant> recomputes;
    TitleCenter center;
    Notifier notifier{&center};

private:
    void begin(double sessionPerHour) {
        if (sessionPerHour > 0) {
            m_counters.startSession(now);
        }
    }

    Counters m_counters;
};

std::vector<Seconds> gaps(const std::vector<Instant>& times) {
    std::vector<Seconds> between;
    for (std::size_t i = 1; i < times.size(); ++i) {
        between.push_back(times[i] - times[i - 1]);
    }
    return between;
}

TEST(ModelDay, SaysTheRightThingAtEachHour) {
    const test::ScopedEnvironment zone("TZ", "UTC");
    const test::ScopedEnvironment locale("LC_ALL", "C");
    ModelDay day;
    EXPECT_EQ(day.model->phase().kind, Phase::starting);
    day.start();
    for (const auto& part : test::kWorkingDay) {
        SCOPED_TRACE(formatIso8601(kMidnight + part.until));
        day.happens(part.event);
        day.work(kMidnight + part.until, part.sessionPerHour);
        EXPECT_EQ(day.model->phase().kind, Phase::ready);
        ASSERT_NE(day.model->session(), nullptr);
        ASSERT_NE(day.model->week(), nullptr);
        EXPECT_EQ(Format::verdict(*day.model->session(), day.model->now()), part.session);
        EXPECT_EQ(Format::verdict(*day.model->week(), day.model->now()), part.week);
        const auto head = Format::head(day.model->answer());
        EXPECT_EQ(head ? head->headline : "", part.head);
        if (const auto* bound = day.model->steerAssessment()) {
            EXPECT_EQ(bound->window.kind, day.model->steer()->kind);
        }
    }
    EXPECT_EQ(day.model->lastProbeAt(), kMidnight + 20h);
    // Each once in the afternoon's session: its reset time stayed the same when it was reset early and when redeemed.
    EXPECT_THAT(day.center.titles, ElementsAre("Session: limit in ~1h 55m", "Session reset", "Session limit reached"));
    EXPECT_GT(day.model->history().size(), 100U);
    EXPECT_TRUE(day.model->sessionWeekRatio());

    // What the user did is in the files, and a new run begins where this one ended.
    EXPECT_EQ(day.plan.load().planned.size(), 1U);  // noon is less than a day ago
    const auto history = day.model->history();
    const auto state = day.model->state().windows();
    day.client = nullptr;
    day.revive();
    day.start();
    EXPECT_EQ(day.model->history(), history);
    EXPECT_EQ(day.model->phase().kind, Phase::ready);
    ASSERT_NE(day.model->week(), nullptr);
    EXPECT_EQ(day.model->week()->window.usedPercent, state.at(WindowKind::week()).usedPercent);
}

TEST(ModelDay, AsksTheClientAndTheTranscriptsWhenTheyAreDue) {
    ModelDay day;
    day.start();
    day.pass(16min);
    EXPECT_THAT(gaps(day.probes), ElementsAre(5min, 5min, 5min));
    // More than 30 seconds apart, at ticks of five; recomputed at every half minute and with each answer.
    EXPECT_THAT(gaps(day.scans), testing::Each(Seconds{35}));
    EXPECT_EQ(day.scans.size(), 1 + 16 * 60 / 35U);
    EXPECT_THAT(gaps(day.recomputes), testing::Each(testing::Le(Seconds{30})));
    EXPECT_LE(day.recomputes.size(), 2 + 16 * 2 + 2 * day.probes.size());

    // The client goes: asked after 1, 2, 4, 8 and then every 16 intervals, until somebody looks and it is back.
    day.client = [] {
        return ProbeFailure{.kind = ProbeFailure::Kind::other, .detail = "gone"};
    };
    const std::size_t before = day.probes.size();
    day.pass(5h);
    EXPECT_THAT(gaps({day.probes.begin() + static_cast<std::ptrdiff_t>(before), day.probes.end()}),
                ElementsAre(10min, 20min, 40min, 80min, 80min));
    EXPECT_EQ(day.model->lastProbeError(), "gone");
    EXPECT_EQ(day.model->phase().kind, Phase::ready);
    test::waitFor([&] { return day.record.load().consecutiveFailures == 6; });
    day.client = [&] {
        return ClientAnswer{.windows = {{WindowKind::week(), 90, day.now + 5h, day.now}}, .insights = {}};
    };
    day.model->refreshIfStale();
    EXPECT_EQ(day.model->lastProbeError(), std::nullopt);
    day.probes.clear();
    day.pass(6min);
    EXPECT_EQ(day.probes.size(), 1U);
}

}  // namespace
}  // namespace vorn
