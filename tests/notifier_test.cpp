#include "app/model/notifier.hpp"

#include <QSettings>
#include <vector>

#include <gmock/gmock.h>

#include "app/model/preferences.hpp"
#include "platform/notification_center.hpp"
#include "tests/support/readings.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

using test::kNow;
using testing::ElementsAre;
using testing::IsEmpty;
using enum VornStatus;
using namespace std::chrono_literals;

class ScriptedCenter final : public NotificationCenter {
public:
    void requestAuthorization(std::function<void(bool)> onAnswer) override { answer = std::move(onAnswer); }
    void post(const Notice& notice) override {
        ids.push_back(notice.id.toStdString());
        texts.push_back((notice.title + " | " + notice.body).toStdString());
        urgencies.push_back(notice.urgency);
    }
    [[nodiscard]] QString problem() const override { return {}; }

    std::function<void(bool)> answer;
    std::vector<std::string> ids;
    std::vector<std::string> texts;
    std::vector<Notice::Urgency> urgencies;
};

struct Stand {
    WindowKind kind = WindowKind::session();
    VornStatus status = comfortable;
    double usedPercent = 50;
    std::optional<Seconds> resetsIn = 4h;
    std::optional<Seconds> timeToLimit{};
};

WindowAssessment assessed(const Stand& stand) {
    auto window = test::reading(stand.kind, stand.usedPercent, stand.resetsIn.value_or(0s));
    if (!stand.resetsIn) {
        window.resetsAt.reset();
    }
    return {.window = window, .timeToLimit = stand.timeToLimit, .status = stand.status};
}

class NotifierTest : public testing::Test {
protected:
    NotifierTest() {
        notifier.requestAuthorization([this] { ++grants; });
        center.answer(true);
    }
    void see(const Stand& stand) { notifier.evaluate(std::vector{assessed(stand)}, preferences, kNow); }
    /// Everything posted since the last call.
    std::vector<std::string> posted() {
        center.texts.clear();
        return std::exchange(center.ids, {});
    }

    test::TemporaryDirectory dir;
    test::ScopedEnvironment zone{"TZ", "UTC"};
    test::ScopedEnvironment locale{"LC_ALL", "C"};
    Preferences preferences{
        std::make_unique<QSettings>(QString::fromStdString((dir / "preferences.ini").string()), QSettings::IniFormat)};
    ScriptedCenter center;
    Notifier notifier{&center};
    int grants = 0;
};

// 12:00 on that day is number 2992248.
TEST_F(NotifierTest, TellsWhatIsDueInTheseWords) {
    const auto opus = WindowKind::weekModel("Opus");
    const struct {
        Stand stand;
        const char* id;
        const char* text;
    } cases[] = {
        {{.status = atRisk, .timeToLimit = 90min},
         "risk:session@2992272",
         "Session: limit in ~1h 30m | At your current pace you'll hit the limit around 13:30. It resets at 16:00."},
        {{.kind = opus, .status = atRisk, .resetsIn = 48h + 299s, .timeToLimit = 20h},
         "risk:week:Opus@2992536",
         "Week · Opus: limit in ~20h | At your current pace you'll hit the limit around Mon 08:00. "
         "It resets at Tue 12:04."},
        {{.kind = WindowKind::week(), .status = atRisk, .resetsIn = std::nullopt, .timeToLimit = 20s},
         "risk:week@0",
         "Week: limit in ~<1m | At your current pace you'll hit the limit around 12:00."},
        {{.kind = WindowKind::week(), .status = limited, .resetsIn = 24h + 300s},
         "limited:week@2992393",
         "Week limit reached | Resets at Mon 12:05"},
        {{.status = limited, .resetsIn = std::nullopt},
         "limited:session@0",
         "Session limit reached | No reset time known yet"},
        {{.kind = opus, .usedPercent = 4.9, .resetsIn = std::nullopt},
         "reset:week:Opus@0",
         "Week · Opus reset | Fresh window. You're good to go."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        see(c.stand);
        see(c.stand);
        EXPECT_THAT(center.texts, ElementsAre(c.text));
        EXPECT_THAT(posted(), ElementsAre(c.id));
    }
    EXPECT_THAT(center.urgencies, testing::Each(Notice::Urgency::normal));
}

TEST_F(NotifierTest, KeepsQuietAboutTheRest) {
    const struct {
        const char* name;
        std::vector<Stand> stands;
    } cases[] = {
        {"limit too far", {{.status = atRisk, .timeToLimit = 2h}, {.status = atRisk, .timeToLimit = 3h}}},
        {"limit of a week too far", {{.kind = WindowKind::week(), .status = atRisk, .timeToLimit = 24h}}},
        {"no limit in sight", {{.status = atRisk}, {.status = watch, .timeToLimit = 1min}}},
        {"fresh at the start", {{.usedPercent = 0}, {.usedPercent = 1, .resetsIn = 5h}}},
        {"relaxed, not reset", {{.status = atRisk}, {.usedPercent = 5}}},
        {"was not tight just before", {{.status = atRisk}, {.status = watch}, {.usedPercent = 2}}},
        {"another window", {{.kind = WindowKind::week(), .status = atRisk}, {.usedPercent = 2}}},
    };
    for (const auto& c : cases) {
        Notifier fresh(&center);
        fresh.requestAuthorization({});
        center.answer(true);
        for (const Stand& stand : c.stands) {
            fresh.evaluate(std::vector{assessed(stand)}, preferences, kNow);
        }
        EXPECT_THAT(posted(), IsEmpty()) << c.name;
    }
    notifier.evaluate({}, preferences, kNow);
    EXPECT_THAT(posted(), IsEmpty());
}

TEST_F(NotifierTest, TellsOncePerInstanceHoweverItsResetTimeJitters) {
    see({.status = atRisk, .timeToLimit = 3h});
    EXPECT_THAT(posted(), IsEmpty());
    for (const auto jitter : {0s, 299s, 300s, -301s, -900s, 899s}) {  // Up to one number to both sides.
        see({.status = atRisk, .resetsIn = 4h + jitter, .timeToLimit = 119min});
    }
    EXPECT_THAT(posted(), ElementsAre("risk:session@2992272"));
    see({.status = atRisk, .resetsIn = 9h, .timeToLimit = 119min});
    EXPECT_THAT(posted(), ElementsAre("risk:session@2992302"));

    // Several windows in one evaluation, each with notices of its own.
    notifier.evaluate(
        std::vector{assessed({.status = limited}), assessed({.kind = WindowKind::week(), .status = limited}),
                    assessed({.kind = WindowKind::weekModel("Opus"), .status = limited})},
        preferences, kNow);
    EXPECT_THAT(posted(), ElementsAre("limited:session@2992272", "limited:week@2992272", "limited:week:Opus@2992272"));
}

TEST_F(NotifierTest, TellsEveryResetOfATightWindow) {
    const Stand tight{.status = limited, .usedPercent = 100};
    const Stand rolledOver{.usedPercent = 0, .resetsIn = std::nullopt};
    for (const auto resetsIn : {4h, 9h, 14h}) {
        auto now = tight;
        now.resetsIn = resetsIn;
        see(now);
        see(rolledOver);
        see(rolledOver);
        EXPECT_THAT(posted(), ElementsAre(testing::StartsWith("limited:session@"), "reset:session@0"));
    }
    // Without a reset time in between it is the same reset again.
    see({.status = atRisk, .resetsIn = std::nullopt});
    see(rolledOver);
    EXPECT_THAT(posted(), IsEmpty());
    // A reset time that is known at once is the new window's.
    see(tight);
    see({.usedPercent = 2, .resetsIn = 9h});
    EXPECT_THAT(posted(), ElementsAre("reset:session@2992302"));
}

TEST_F(NotifierTest, ObeysTheSwitchesAndStillFollows) {
    const Stand near{.status = atRisk, .timeToLimit = 1h};
    const Stand reached{.status = limited};
    const Stand fresh{.usedPercent = 0, .resetsIn = 9h};
    preferences.setNotifyAtRisk(false);
    preferences.setNotifyLimited(false);
    see(near);
    see(reached);
    EXPECT_THAT(posted(), IsEmpty());
    see(fresh);
    EXPECT_THAT(posted(), ElementsAre("reset:session@2992302"));
    preferences.setNotifyAtRisk(true);
    preferences.setNotifyReset(false);
    see(near);
    see(fresh);
    EXPECT_THAT(posted(), ElementsAre("risk:session@2992272"));
}

TEST_F(NotifierTest, KeepsNoticesForTheTimeWhenTheyAreAllowed) {
    const Stand near{.status = atRisk, .timeToLimit = 1h};
    center.answer(false);
    see(near);
    EXPECT_FALSE(notifier.isAuthorized());
    EXPECT_THAT(posted(), IsEmpty());
    center.answer(true);
    EXPECT_EQ(grants, 2);
    see(near);
    EXPECT_THAT(posted(), ElementsAre("risk:session@2992272"));

    Notifier none(nullptr);
    none.requestAuthorization([] { FAIL(); });
    none.evaluate(std::vector{assessed(near)}, preferences, kNow);
    EXPECT_FALSE(none.isAuthorized());

    bool isTold = false;
    std::make_unique<Notifier>(&center)->requestAuthorization([&] { isTold = true; });
    center.answer(true);  // Nobody is there any more.
    EXPECT_FALSE(isTold);
}

}  // namespace
}  // namespace vorn
