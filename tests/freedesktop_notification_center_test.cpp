#include "platform/linux/freedesktop_notification_center.hpp"

#include <QCoreApplication>
#include <QDBusArgument>

#include <gmock/gmock.h>

#include "tests/support/fake_notification_server.hpp"
#include "tests/support/private_bus.hpp"
#include "tests/support/wait_until.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

const std::string kNoServer = "Notifications cannot be shown: no notification service is running on this desktop.";
const std::string kSilent = "Notifications cannot be shown: the notification service of this desktop does not answer.";
const std::string kNoBus = "Notifications cannot be shown: this session has no message bus (D-Bus).";

class FreedesktopNotificationCenterTest : public testing::Test {
protected:
    void start(const QDBusConnection& connection, FreedesktopNotificationCenter::Patience patience = {}) {
        answers.clear();
        center = std::make_unique<FreedesktopNotificationCenter>(connection, patience);
        center->requestAuthorization([this](bool granted) { answers.push_back(granted); });
        QObject::connect(center.get(), &NotificationCenter::activated,
                         [this](const QString& id) { clicks.push_back(id.toStdString()); });
    }
    void serve(const QStringList& capabilities = {"actions", "body"}) {
        server = std::make_unique<test::FakeNotificationServer>(bus.connection(), capabilities);
    }
    void crash() {
        server.reset();
        test::waitUntil([&] { return !answers.back(); });
    }
    void expect(const std::vector<bool>& answered, const std::string& problem = "") {
        test::waitUntil(
            [&] { return answers.size() >= answered.size() && center->problem().toStdString() == problem; });
        EXPECT_EQ(answers, answered);
        EXPECT_EQ(center->problem().toStdString(), problem);
    }
    void expectClicks(const std::vector<std::string>& expected) {
        test::waitUntil([&] { return clicks.size() >= expected.size(); });
        EXPECT_EQ(clicks, expected);
    }
    /// The arguments of the n-th notice that the present server got.
    QVariantList notice(std::size_t number) {
        const bool isThere = test::waitUntil([&] { return server->notices.size() >= number; });
        return isThere ? server->notices[number - 1] : throw std::runtime_error("the server gets no notice");
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
    std::unique_ptr<test::FakeNotificationServer> server;
    std::unique_ptr<FreedesktopNotificationCenter> center;
    std::vector<bool> answers;
    std::vector<std::string> clicks;
};

TEST_F(FreedesktopNotificationCenterTest, SaysWhatTheServerCanShow) {
    const QStringList actions{"default", "Open Vorn"};
    const struct {
        QStringList capabilities;
        const char* body;
        QStringList actions;
    } cases[] = {
        {{"actions", "body", "body-markup"}, "1 &lt; 2 &amp; it's", actions},
        {{"body", "body-markup"}, "1 &lt; 2 &amp; it's", {}},
        {{"body", "actions"}, "1 < 2 & it's", actions},
        {{}, "1 < 2 & it's", {}},
    };
    const QVariantMap hints{
        {"urgency", QVariant::fromValue<uchar>(1)}, {"sound-name", "message"}, {"desktop-entry", "vorn"}};
    for (const auto& c : cases) {
        serve(c.capabilities);
        start(bus.connection());
        expect({true});
        center->post({.id = "a", .title = "Week <all>", .body = "1 < 2 & it's"});
        auto arguments = notice(1);
        EXPECT_EQ(qdbus_cast<QVariantMap>(arguments[6]), hints);
        arguments.remove(6);
        EXPECT_EQ(arguments, (QVariantList{"Vorn", 0U, "vorn", "Week <all>", c.body, c.actions, -1}));
        center.reset();
        server.reset();
    }
}

TEST_F(FreedesktopNotificationCenterTest, ReplacesAnEarlierNoticeOfTheSameServer) {
    serve();
    start(bus.connection());
    expect({true});
    center->post({.id = "a", .title = "1"});
    center->post({.id = "a", .title = "overtaken"});
    center->post({.id = "a", .title = "2"});  // Before the answer tells the number of the first.
    center->post({.id = "b", .title = "3"});
    (void)notice(3);
    settle();
    center->post({.id = "a", .title = "4"});
    (void)notice(4);
    std::vector<std::string> seen;
    for (const auto& arguments : server->notices) {
        seen.push_back(arguments[3].toString().toStdString() + " for " + std::to_string(arguments[1].toUInt()));
    }
    EXPECT_THAT(seen, testing::UnorderedElementsAre("1 for 0", "2 for 1", "3 for 0", "4 for 1"));

    crash();
    serve();
    expect({true, false, true});
    center->post({.id = "c", .title = "takes the number 1"});
    (void)notice(1);
    center->post({.id = "a", .title = "5"});
    EXPECT_EQ(notice(2)[1], 0U);
}

TEST_F(FreedesktopNotificationCenterTest, FollowsServersThatComeAndGo) {
    start(bus.connection());
    center->post({.id = "a", .title = "too early"});
    expect({false}, kNoServer);
    center->requestAuthorization([this](bool granted) { answers.push_back(granted); });
    expect({false, false}, kNoServer);
    serve({});
    expect({false, false, true, true});
    EXPECT_TRUE(server->notices.empty());
    server.reset();
    expect({false, false, true, true, false, false}, kNoServer);
    serve({"body-markup"});
    expect({false, false, true, true, false, false, true, true});
    center->post({.id = "a", .title = "t", .body = "&"});
    EXPECT_EQ(notice(1)[4], "&amp;");
}

TEST_F(FreedesktopNotificationCenterTest, TellsClicksOnItsOwnNotices) {
    serve();
    start(bus.connection());
    expect({true});
    center->post({.id = "risk:week@1", .title = "t"});
    (void)notice(1);
    settle();
    server->invoke(2, "default");  // Another program's.
    server->invoke(1, "other");
    server->invoke(0, "default");
    server->invoke(1, "default");
    expectClicks({"risk:week@1"});

    crash();
    serve();
    expect({true, false, true});
    server->invoke(1, "default");  // Says the new server about somebody's notice.
    settle();
    expectClicks({"risk:week@1"});
}

TEST_F(FreedesktopNotificationCenterTest, CountsAServerOnDemandAsThere) {
    const auto flag = bus.directory() / "started";
    const auto isStarted = [&] {
        return std::filesystem::exists(flag);
    };
    bus.makeActivatable("org.freedesktop.Notifications",
                        "touch " + flag.string() + "; while [ -e " + flag.string() + " ]; do sleep 0.1; done");
    start(bus.connection());
    EXPECT_TRUE(test::waitUntil(isStarted));
    serve();
    expect({true});

    std::filesystem::remove(flag);
    server.reset();  // It ends with nothing left to show.
    expect({true, false, true});
    EXPECT_FALSE(isStarted()) << "started again without need";
    center->post({.id = "a", .title = "t"});
    EXPECT_TRUE(test::waitUntil(isStarted));
    serve();
    (void)notice(1);
    expect({true, false, true, false, true});
    server->invoke(1, "default");
    expectClicks({"a"});
    std::filesystem::remove(flag);
}

TEST_F(FreedesktopNotificationCenterTest, WaitsForAServerThatDoesNotAnswer) {
    serve();
    server->isSilent = true;
    start(bus.connection(), {.answer = 50ms, .nextTry = 50ms});
    expect({false}, kSilent);
    test::waitUntil([&] { return server->questions >= 3; });
    expect({false}, kSilent);
    server->isSilent = false;
    expect({false, true});
    server->isSilent = true;
    center->post({.id = "a", .title = "1"});
    center->post({.id = "a", .title = "2"});
    EXPECT_EQ(notice(2)[1], 0U) << "not posted when the first was given up";
}

TEST_F(FreedesktopNotificationCenterTest, SurvivesAnAbsentOrDyingBus) {
    start(QDBusConnection("no such connection"));
    center->post({.id = "a", .title = "t"});
    expect({false}, kNoBus);

    serve();
    start(bus.connection());
    expect({true});
    bus.kill();
    expect({true, false}, kNoBus);
    center->post({.id = "a", .title = "t"});
}

}  // namespace
}  // namespace vorn
