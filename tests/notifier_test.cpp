#include "model/notifier.hpp"

#include <QSettings>

#include <gmock/gmock.h>

#include "model/preferences/preferences.hpp"
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
        text = (notice.title + " | " + notice.body).toStdString();
    }
    [[nodiscard]] QString problem() const override { return {}; }

    std::function<void(bool)> answer;
    std::vector<std::string> ids;
    std::string text;  ///< Of the last one.
};

const WindowKind kOpus = WindowKind::weekModel("Opus");

struct Stand {
    WindowKind kind = WindowKind::session();
    VornStatus status = comfortable;
    double usedPercent = 50;
    std::optional<Seconds> resetsIn = 4h;
    std::optional<Seconds> timeToLimit{};
};

class NotifierTest : public testing::Test {
protected:
    NotifierTest() {
        notifier.requestAuthorization([this] { ++grants; });
        center.answer(true);
    }
    void see(const std::vector<Stand>& stands) {
        std::vector<WindowAssessment> assessments;
        for (const Stand& stand : stands) {
            auto window = test::reading(stand.kind, stand.usedPercent, stand.resetsIn.value_or(0s));
            window.resetsAt = stand.resetsIn ? window.resetsAt : std::nullopt;
            assessments.push_back({.window = window, .timeToLimit = stand.timeToLimit, .status = stand.status});
        }
        notifier.evaluate(assessments, preferences, kNow);
    }
    /// Everything posted since the last call.
    std::vector<std::string> posted() { return std::exchange(center.ids, {}); }

    test::TemporaryDirectory dir;
    test::ScopedEnvironment zone{"TZ", "UTC"};
    test::ScopedEnvironment locale{"LC_ALL", "C"};
    Preferences preferences{
        std::make_unique<QSettings>(QString::fromStdString((dir / "preferences.ini").string()), QSettings::IniFormat)};
    ScriptedCenter center;
    Notifier notifier{&center};
    int grants = 0;
};

// The noon of `kNow` has the number 2992248; a day has 144.
TEST_F(NotifierTest, TellsWhatIsDueOnceAndInTheseWords) {
    const struct {
        Stand stand;
        const char* id;  ///< Null: nothing is due.
        const char* text = "";
    } cases[] = {
        {{.status = atRisk, .timeToLimit = 2h}, nullptr},
        {{.status = atRisk, .timeToLimit = 2h - 1s},
         "risk:session@2992272",
         "Session: limit in ~2h | At your current pace you'll hit the limit around 13:59. It resets at 16:00"},
        {{.kind = kOpus, .status = atRisk, .timeToLimit = 24h}, nullptr},
        {{.kind = kOpus, .status = atRisk, .resetsIn = 48h + 299s, .timeToLimit = 20h},
         "risk:week:Opus@2992536",
         "Week · Opus: limit in ~20h | At your current pace you'll hit the limit around Mon 08:00. "
         "It resets at Tue 12:04"},
        {{.kind = WindowKind::week(), .status = atRisk, .resetsIn = std::nullopt, .timeToLimit = 20s},
         "risk:week@0",
         "Week: limit in ~<1m | At your current pace you'll hit the limit around 12:00."},
        {{.kind = WindowKind::week(), .status = atRisk}, nullptr},
        {{.kind = WindowKind::week(), .status = limited, .resetsIn = 24h + 300s},
         "limited:week@2992393",
         "Week limit reached | Resets at Mon 12:05"},
        {{.status = limited, .resetsIn = std::nullopt},
         "limited:session@0",
         "Session limit reached | No reset time known yet"},
        {{.kind = kOpus, .usedPercent = 5}, nullptr},
        {{.kind = kOpus, .usedPercent = 2}, nullptr},  // It was comfortable just before.
        {{.kind = kOpus, .status = atRisk}, nullptr},
        {{.kind = kOpus, .status = watch, .timeToLimit = 1min}, nullptr},
        {{.kind = kOpus, .usedPercent = 2}, nullptr},  // It was only watched.
        {{.usedPercent = 4.9, .resetsIn = std::nullopt},
         "reset:session@0",
         "Session reset | Fresh window. You're good to go."},
        {{.kind = WindowKind::weekModel("Sonnet"), .usedPercent = 0}, nullptr},  // Seen for the first time.
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        center.text.clear();
        see({c.stand, c.stand});
        EXPECT_EQ(posted(), c.id == nullptr ? std::vector<std::string>() : std::vector<std::string>{c.id});
        EXPECT_EQ(center.text, c.text);
    }
}

TEST_F(NotifierTest, TellsInstancesApartHoweverTheirResetTimesJitter) {
    for (const auto jitter : {0s, 299s, 300s, -301s, -900s, 899s}) {  // Up to one number to both sides.
        see({{.status = atRisk, .resetsIn = 4h + jitter, .timeToLimit = 1h}});
    }
    EXPECT_THAT(posted(), ElementsAre("risk:session@2992272"));
    see({{.status = atRisk, .resetsIn = 9h, .timeToLimit = 1h}, {.kind = kOpus, .status = limited}});
    EXPECT_THAT(posted(), ElementsAre("risk:session@2992302", "limited:week:Opus@2992272"));
}

TEST_F(NotifierTest, TellsEveryResetOfATightWindow) {
    const Stand rolledOver{.usedPercent = 0, .resetsIn = std::nullopt};
    for (const auto resetsIn : {4h, 9h, 14h}) {
        see({{.status = limited, .resetsIn = resetsIn}, rolledOver, rolledOver});
        EXPECT_THAT(posted(), ElementsAre(testing::StartsWith("limited:session@"), "reset:session@0"));
    }
    // Without a reset time in between it is the same reset again.
    see({{.status = atRisk, .resetsIn = std::nullopt}, rolledOver});
    EXPECT_THAT(posted(), IsEmpty());
    // A reset time that is known at once is the new instance's.
    see({{.status = atRisk}, {.usedPercent = 2, .resetsIn = 9h}});
    EXPECT_THAT(posted(), ElementsAre("reset:session@2992302"));
}

TEST_F(NotifierTest, TellsOfAMovedResetAndOfCreditsOnce) {
    const UsageWindow full = test::reading(WindowKind::session(), 100, 2h);
    Answer answer{.now = kNow,
                  .cards = {{.assessment = {.window = full, .status = limited}, .rates = {}, .readings = {}}},
                  .others = {.credits = Credits{.isEnabled = true, .spent = 100, .currency = "USD"}},
                  .urgent = full.kind};
    notifier.evaluate(answer, preferences);
    EXPECT_THAT(posted(), testing::SizeIs(1)) << "the limit; that credits are switched on is no news";
    answer.others.credits->spent = 1540;
    notifier.evaluate(answer, preferences);
    EXPECT_EQ(center.text,
              "Now on credits | Session limit reached; what is used from now on is paid for: $15.40 spent");
    answer.others.credits->spent = 1600;
    notifier.evaluate(answer, preferences);
    EXPECT_THAT(posted(), testing::SizeIs(1));

    answer.moved = {{.event = Outcome::Event::moved,
                     .kind = full.kind,
                     .at = kNow,
                     .resetsAt = kNow + 50h,
                     .nextResetsAt = kNow + 2h}};
    notifier.evaluate(answer, preferences);
    notifier.evaluate(answer, preferences);
    EXPECT_THAT(posted(), testing::SizeIs(1));
    EXPECT_EQ(center.text, "Session: another reset time | The session now resets 14:00, was Tue 14:00");
}

TEST_F(NotifierTest, FollowsWhileItMayNotTell) {
    const Stand near{.status = atRisk, .timeToLimit = 1h};
    const Stand fresh{.usedPercent = 0, .resetsIn = 9h};
    preferences.setNotifyAtRisk(false);
    preferences.setNotifyLimited(false);
    see({near, {.status = limited}, fresh});
    EXPECT_THAT(posted(), ElementsAre("reset:session@2992302"));
    preferences.setNotifyAtRisk(true);
    preferences.setNotifyReset(false);
    center.answer(false);
    see({near});
    EXPECT_FALSE(notifier.isAuthorized());
    EXPECT_THAT(posted(), IsEmpty());
    center.answer(true);
    EXPECT_EQ(grants, 2);
    see({near, fresh});
    EXPECT_THAT(posted(), ElementsAre("risk:session@2992272"));

    Notifier without(nullptr);
    without.requestAuthorization([] { FAIL(); });
    without.evaluate({}, preferences, kNow);
    std::make_unique<Notifier>(&center)->requestAuthorization([] { FAIL() << "told after its end"; });
    center.answer(true);
}

}  // namespace
}  // namespace vorn
