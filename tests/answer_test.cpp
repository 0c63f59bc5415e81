#include "core/analysis/answer.hpp"

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;
using VornEngine::formAnswer;

TEST(Answer, HasAStageForEveryBeginning) {
    const Asking failed{.lastAt = kNow, .failure = ProbeFailure{.kind = ProbeFailure::Kind::timedOut}};
    const std::vector windows{reading(WindowKind::session(), 5, 3h)};
    const std::pair<Evidence, Answer::Stage> cases[] = {
        {{}, Answer::Stage::starting},
        {{.asking = {.isRunning = true}}, Answer::Stage::starting},
        {{.asking = {.hasAnswered = true}}, Answer::Stage::noLimits},
        {{.asking = failed}, Answer::Stage::failed},
        {{.windows = windows, .asking = failed}, Answer::Stage::ready},
        {{.windows = windows, .isJudged = false}, Answer::Stage::ready},
    };
    for (const auto& [evidence, stage] : cases) {
        EXPECT_EQ(formAnswer(evidence, kNow).stage, stage);
    }
}

TEST(Answer, ConcludesNothingBeforeItIsJudged) {
    const Evidence evidence{.windows = {reading(WindowKind::session(), 100, 3h), reading(WindowKind::week(), 90, 90h)},
                            .ratio = SessionWeekRatio{.weekPointsPerSessionPoint = 0.1},
                            .isJudged = false};
    const Answer answer = formAnswer(evidence, kNow);
    EXPECT_FALSE(answer.head || answer.urgent || answer.steer || answer.ratio || answer.sessionsLeft);
    ASSERT_EQ(answer.cards.size(), 2U);
    const WindowAssessment& session = *answer.session();
    EXPECT_EQ(session, (WindowAssessment{.window = evidence.windows[0], .timeToReset = 3h}));
    EXPECT_TRUE(answer.cards[0].rates.empty());
    EXPECT_EQ(answer.observedAt, kNow);
}

TEST(Answer, HeadNeverPromisesRoomAtALimit) {
    const UsageWindow week = reading(WindowKind::week(), 10, 24h);
    const UsageWindow fast = reading(WindowKind::session(), 60, 4h);
    const struct {
        const char* name;
        std::vector<UsageWindow> windows;
        std::optional<WindowKind> urgent;
        std::optional<WindowKind> head;
        std::optional<VornSteer::Direction> direction;
    } cases[] = {
        {"none", {}, {}, {}, {}},
        {"a limited one comes before room elsewhere",
         {reading(WindowKind::session(), 100, 3h), week},
         WindowKind::session(),
         WindowKind::session(),
         VornSteer::Direction::stop},
        {"the tight one", {fast, week}, WindowKind::session(), WindowKind::session(), VornSteer::Direction::easeOff},
        {"room", {week}, WindowKind::week(), WindowKind::week(), VornSteer::Direction::speedUp},
        {"a reading without a reset has a verdict alone",
         {{.kind = WindowKind::session(), .usedPercent = 40, .resetsAt = {}, .observedAt = kNow}},
         WindowKind::session(),
         WindowKind::session(),
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Answer answer = formAnswer({.windows = c.windows}, kNow);
        EXPECT_EQ(answer.urgent, c.urgent);
        EXPECT_EQ(answer.head ? std::optional(answer.head->kind) : std::nullopt, c.head);
        const auto advice = answer.head ? answer.head->steer : std::nullopt;
        EXPECT_EQ(advice ? std::optional(advice->direction()) : std::nullopt, c.direction);
    }
}

TEST(Answer, StaysWithTheWindowItSteeredBy) {
    // Two that leave nearly the same room.
    Evidence evidence{.windows = {reading(WindowKind::session(), 41, 3h), reading(WindowKind::week(), 41, 100.8h)}};
    evidence.windows[1].usedPercent = 40;
    EXPECT_EQ(formAnswer(evidence, kNow).steer->kind, WindowKind::session());
    evidence.steeredBy = WindowKind::week();
    EXPECT_EQ(formAnswer(evidence, kNow).steer->kind, WindowKind::week());
    evidence.windows[0].usedPercent = 60;
    EXPECT_EQ(formAnswer(evidence, kNow).steer->kind, WindowKind::session());
}

TEST(Answer, SaysWhereItsFiguresComeFrom) {
    Evidence evidence{.windows = {reading(WindowKind::session(), 40, 3h), reading(WindowKind::week(), 40, 90h),
                                  reading(WindowKind::weekModel("Opus"), 40, 90h)},
                      .ratio = SessionWeekRatio{.weekPointsPerSessionPoint = 0.1},
                      .isDemo = true};
    evidence.windows[0].source = DataSource::statusLine;
    evidence.windows[2].observedAt = kNow - 60s;
    evidence.windows[1].observedAt = kNow - 30s;
    evidence.activity = std::make_shared<ActivitySummary>(activity({{-10min, 1000}, {-5min, 1000}}));
    Answer answer = formAnswer(evidence, kNow);
    EXPECT_EQ(answer.observedAt, kNow);
    EXPECT_EQ(answer.source, DataSource::statusLine);
    EXPECT_EQ(answer.lastObserved(DataSource::usageCommand), kNow - 30s);
    EXPECT_EQ(answer.sessionsLeft, 6);
    EXPECT_TRUE(answer.isDemo);
    EXPECT_EQ(answer.session()->rateBasis, RateBasis::localActivity);
    EXPECT_EQ(answer, formAnswer(evidence, kNow));
    evidence.useActivity = false;
    answer = formAnswer(evidence, kNow);
    EXPECT_NE(answer.session()->rateBasis, RateBasis::localActivity);
    EXPECT_TRUE(answer.activity) << "it is still shown";
}

}  // namespace
}  // namespace vorn
