#include "platform/linux/freedesktop_notification_center.hpp"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include "tests/support/fake_notification_server.hpp"
#include "tests/support/private_bus.hpp"
#include "tests/support/wait_until.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::FakeNotificationServer;
using testing::ElementsAre;
using testing::IsEmpty;

class FreedesktopNotificationCenterTest : public testing::Test {
protected:
    void start(FreedesktopNotificationCenter::Patience patience = {}) {
        center = std::make_unique<FreedesktopNotificationCenter>(bus.connection(), patience);
        center->requestAuthorization([this](bool granted) { answers.push_back(granted); });
        QObject::connect(center.get(), &NotificationCenter::activated,
                         [this](const QString& id) { clicks.push_back(id.toStdString()); });
    }
    void serve(const QStringList& capabilities = {"actions", "body"}) {
        server = std::make_unique<FakeNotificationServer>(bus.connection(), capabilities);
    }
    void expectAnswers(const std::vector<bool>& expected) {
        test::waitUntil([&] { return answers.size() >= expected.size(); });
        EXPECT_EQ(answers, expected);
    }
    /// Waits for the n-th notice that the present server got.
    const FakeNotificationServer::Shown& notice(std::size_t number) {
        if (!test::waitUntil([&] { return server->shown.size() >= number; })) {
            throw std::runtime_error("the server gets no notice");
        }
        return server->shown[number - 1];
    }
    /// Has what the server sent so far delivered: whoever asks it now is answered later.
    void settle() {
        bool isAnswered = false;
        FreedesktopNotificationCenter other(bus.connection());
        other.requestAuthorization([&](bool) { isAnswered = true; });
        test::waitUntil([&] { return isAnswered; });
    }

    int argc = 0;
    QCoreApplication application{argc, nullptr};
    test::PrivateBus bus;
    std::unique_ptr<FakeNotificationServer> server;
    std::unique_ptr<FreedesktopNotificationCenter> center;
    std::vector<bool> answers;
    std::vector<std::string> clicks;
};

TEST_F(FreedesktopNotificationCenterTest, SaysWhatTheServerCanShow) {
    const struct {
        const char* name;
        QStringList capabilities;
        const char* body;
        QStringList actions;
    } cases[] = {
        {"everything",
         {"actions", "body", "body-markup", "persistence"},
         "1 &lt; 2 &amp; it's",
         {"default", "Open Vorn"}},
        {"no actions", {"body", "body-markup"}, "1 &lt; 2 &amp; it's", {}},
        {"no markup", {"body", "actions"}, "1 < 2 & it's", {"default", "Open Vorn"}},
        {"nothing", {}, "1 < 2 & it's", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        answers.clear();
        serve(c.capabilities);
        start();
        expectAnswers({true});
        center->post({.id = "a", .title = "Week <all>", .body = "1 < 2 & it's", .urgency = Notice::Urgency::low});
        const auto& shown = notice(1);
        EXPECT_EQ(shown.title, "Week <all>");
        EXPECT_EQ(shown.body, c.body);
        EXPECT_EQ(shown.actions, c.actions);
        EXPECT_EQ(shown.application, "Vorn");
        EXPECT_EQ(shown.icon, "vorn");
        EXPECT_EQ(shown.hints, (QVariantMap{{"urgency", QVariant::fromValue<uchar>(0)},
                                            {"sound-name", "message"},
                                            {"desktop-entry", "vorn"}}));
        center.reset();
        server.reset();
    }
}

TEST_F(FreedesktopNotificationCenterTest, ReplacesAnEarlierNoticeOfTheSameServer) {
    serve();
    start();
    expectAnswers({true});
    center->post({.id = "a", .title = "1"});
    center->post({.id = "a", .title = "overtaken"});
    center->post({.id = "a", .title = "2"});  // Before the answer tells the number of the first.
    center->post({.id = "b", .title = "3"});
    (void)notice(3);
    settle();
    center->post({.id = "a", .title = "4"});
    (void)notice(4);
    std::vector<std::string> seen;
    for (const auto& shown : server->shown) {
        seen.push_back(shown.title.toStdString() + " as " + std::to_string(shown.id) + " for " +
                       std::to_string(shown.replaced));
    }
    EXPECT_THAT(seen, testing::UnorderedElementsAre("1 as 1 for 0", "2 as 1 for 1", "3 as 2 for 0", "4 as 1 for 1"));

    server.reset();
    expectAnswers({true, false});
    serve();
    expectAnswers({true, false, true});
    center->post({.id = "c", .title = "somebody else's 1"});
    (void)notice(1);
    center->post({.id = "a", .title = "5"});
    EXPECT_EQ(notice(2).replaced, 0U);
}

TEST_F(FreedesktopNotificationCenterTest, FollowsServersThatComeAndGo) {
    start();
    std::vector<std::string> problems;
    QObject::connect(center.get(), &NotificationCenter::problemChanged,
                     [&] { problems.push_back(center->problem().toStdString()); });
    center->post({.id = "a", .title = "too early"});
    expectAnswers({false});
    EXPECT_EQ(center->problem(), "Notifications cannot be shown: no notification service is running on this desktop.");
    center->requestAuthorization([this](bool granted) { answers.push_back(granted); });
    expectAnswers({false, false});  // Asked once more, and told at once.
    center->post({.id = "a", .title = "still too early"});

    serve();
    expectAnswers({false, false, true, true});
    EXPECT_EQ(center->problem(), "");
    EXPECT_THAT(server->shown, IsEmpty());
    server.reset();
    expectAnswers({false, false, true, true, false, false});
    serve({"body-markup"});
    expectAnswers({false, false, true, true, false, false, true, true});
    center->post({.id = "a", .title = "t", .body = "&"});
    EXPECT_EQ(notice(1).body, "&amp;");
    EXPECT_EQ(problems.size(), 4U) << testing::PrintToString(problems);
}

TEST_F(FreedesktopNotificationCenterTest, TellsClicksOnItsOwnNotices) {
    serve();
    start();
    expectAnswers({true});
    center->post({.id = "risk:week@1", .title = "t"});
    const uint id = notice(1).id;
    settle();
    emit server->ActionInvoked(id + 1, "default");  // Another program's.
    emit server->ActionInvoked(id, "other");
    emit server->ActionInvoked(0, "default");
    emit server->ActionInvoked(id, "default");
    test::waitUntil([&] { return !clicks.empty(); });
    EXPECT_THAT(clicks, ElementsAre("risk:week@1"));

    server.reset();
    serve();
    expectAnswers({true, false, true});
    emit server->ActionInvoked(id, "default");  // Says the new server about somebody's notice.
    settle();
    EXPECT_THAT(clicks, ElementsAre("risk:week@1"));
}

TEST_F(FreedesktopNotificationCenterTest, CountsAServerOnDemandAsThere) {
    const auto started = bus.directory() / "started";
    bus.makeActivatable("org.freedesktop.Notifications",
                        "touch " + started.string() + "; while [ -e " + started.string() + " ]; do sleep 0.1; done");
    const auto isStarted = [&] {
        return std::filesystem::exists(started);
    };
    start();
    EXPECT_TRUE(test::waitUntil(isStarted));
    serve();
    expectAnswers({true});

    std::filesystem::remove(started);
    server.reset();  // With nothing left to show it ends.
    expectAnswers({true, false, true});
    EXPECT_FALSE(isStarted()) << "started again without need";
    center->post({.id = "a", .title = "t"});
    EXPECT_TRUE(test::waitUntil(isStarted));
    serve();
    const uint id = notice(1).id;
    expectAnswers({true, false, true, false, true});
    emit server->ActionInvoked(id, "default");
    test::waitUntil([&] { return !clicks.empty(); });
    EXPECT_THAT(clicks, ElementsAre("a"));
    std::filesystem::remove(started);
}

TEST_F(FreedesktopNotificationCenterTest, WaitsForAServerThatDoesNotAnswer) {
    serve();
    server->isSilent = true;
    start({.answer = 50ms, .nextTry = 50ms});
    expectAnswers({false});
    EXPECT_EQ(center->problem(),
              "Notifications cannot be shown: the notification service of this desktop does not answer.");
    test::waitUntil([&] { return server->questions >= 3; });
    EXPECT_THAT(answers, ElementsAre(false));
    server->isSilent = false;
    expectAnswers({false, true});
    server->isSilent = true;
    center->post({.id = "a", .title = "1"});
    center->post({.id = "a", .title = "2"});
    EXPECT_EQ(notice(2).replaced, 0U);  // Posted all the same once the first is given up.
}

TEST_F(FreedesktopNotificationCenterTest, SurvivesAnAbsentOrDyingBus) {
    const QString noBus = "Notifications cannot be shown: this session has no message bus (D-Bus).";
    FreedesktopNotificationCenter without(QDBusConnection("no such connection"));
    EXPECT_EQ(without.problem(), noBus);
    without.requestAuthorization([this](bool granted) { answers.push_back(granted); });
    without.post({.id = "a", .title = "t"});
    expectAnswers({false});
    answers.clear();

    serve();
    start();
    expectAnswers({true});
    bus.kill();
    expectAnswers({true, false});
    EXPECT_EQ(center->problem(), noBus);
    center->post({.id = "a", .title = "t"});
}

}  // namespace
}  // namespace vorn
