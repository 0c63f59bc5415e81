#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
#include <QStandardPaths>
#include <fstream>

#include <gmock/gmock.h>

#include "app/model/notifier.hpp"
#include "app/model/preferences.hpp"
#include "platform/linux/freedesktop_notification_center.hpp"
#include "tests/support/fake_notification_server.hpp"
#include "tests/support/private_bus.hpp"
#include "tests/support/readings.hpp"
#include "tests/support/wait_until.hpp"

/// From an assessment to what a notification server got to show, with servers that crash on the way.
namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::kNow;
using test::waitUntil;

/// Some notification server; tells what it was given as "title|body".
class Server {
public:
    virtual ~Server() = default;
    virtual void start() = 0;
    virtual void crash() = 0;
    virtual std::vector<std::string> notices() = 0;
    virtual void clickTheOldest() = 0;
};

class FakeServer final : public Server {
public:
    explicit FakeServer(test::PrivateBus& bus) : m_bus(bus) {}
    void start() override {
        m_server = std::make_unique<test::FakeNotificationServer>(m_bus.connection(), QStringList{"actions", "body"});
    }
    void crash() override {
        m_earlier = notices();
        m_server.reset();
    }
    std::vector<std::string> notices() override {
        auto all = m_earlier;
        if (m_server) {
            for (const auto& shown : m_server->shown) {
                all.push_back((shown.title + '|' + shown.body).toStdString());
            }
        }
        return all;
    }
    void clickTheOldest() override { emit m_server->ActionInvoked(m_server->shown.front().id, "default"); }

private:
    test::PrivateBus& m_bus;
    std::unique_ptr<test::FakeNotificationServer> m_server;
    std::vector<std::string> m_earlier;
};

/// The real one, on a display of its own.
class Dunst final : public Server {
public:
    static bool isInstalled() {
        return !QStandardPaths::findExecutable("dunst").isEmpty() && !QStandardPaths::findExecutable("Xvfb").isEmpty();
    }
    explicit Dunst(const test::PrivateBus& bus) : m_bus(bus) {
        m_display.start("Xvfb", {"-displayfd", "1", "-screen", "0", "640x480x24", "-nolisten", "tcp"});
        m_display.waitForReadyRead(10'000);
        const auto number = QString::fromUtf8(m_display.readAllStandardOutput()).trimmed();
        EXPECT_FALSE(number.isEmpty()) << "no display";

        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", ':' + number);
        environment.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
        environment.remove("WAYLAND_DISPLAY");
        environment.insert("HOME", QString::fromStdString(bus.directory().path().string()));
        m_dunst.setProcessEnvironment(environment);
        m_control.setProcessEnvironment(environment);
        const auto script =
            bus.directory().executable("note", "printf '%s|%s\\n' \"$2\" \"$3\" >>'" + m_log.string() + "'");
        m_configuration = bus.directory().write(
            "dunstrc", "[global]\nmarkup = full\n[urgency_normal]\ntimeout = 0\n[all]\nsummary = \"*\"\nscript = " +
                           script.string() + "\n");
    }
    ~Dunst() override {
        crash();
        m_display.terminate();
        m_display.waitForFinished();
    }
    void start() override { m_dunst.start("dunst", {"-conf", QString::fromStdString(m_configuration.string())}); }
    void crash() override {
        m_dunst.kill();
        m_dunst.waitForFinished();
    }
    std::vector<std::string> notices() override {
        std::ifstream log(m_log);
        std::vector<std::string> lines;
        for (std::string line; std::getline(log, line);) {
            lines.push_back(line);
        }
        return lines;
    }
    void clickTheOldest() override {
        m_control.start("dunstctl", {"action", "0"});
        m_control.waitForFinished();
    }

private:
    const test::PrivateBus& m_bus;
    std::filesystem::path m_log = m_bus.directory() / "log";
    std::filesystem::path m_configuration;
    QProcess m_display;
    QProcess m_dunst;
    QProcess m_control;
};

class DesktopNoticesTest : public testing::Test {
protected:
    void expectEachNoticeOnce(Server& server) {
        const test::ScopedEnvironment zone("TZ", "UTC");
        const test::ScopedEnvironment locale("LC_ALL", "C");
        const auto store = QString::fromStdString((bus.directory() / "preferences.ini").string());
        const Preferences preferences(std::make_unique<QSettings>(store, QSettings::IniFormat));
        FreedesktopNotificationCenter center(bus.connection());
        std::string clicked;
        QObject::connect(&center, &NotificationCenter::activated,
                         [&](const QString& id) { clicked = id.toStdString(); });
        Notifier notifier(&center);
        std::vector<WindowAssessment> now;
        const auto evaluate = [&] {
            notifier.evaluate(now, preferences, kNow);
        };
        notifier.requestAuthorization(evaluate);
        const auto see = [&](const WindowAssessment& assessment) {
            now = {assessment};
            evaluate();
            evaluate();
        };
        const auto expectNotices = [&](const std::vector<std::string>& expected) {
            waitUntil([&] { return server.notices().size() >= expected.size(); });
            EXPECT_EQ(server.notices(), expected);
        };

        const std::string near =
            "Session: limit in ~1h 30m|At your current pace you'll hit the limit around 13:30. It resets at 16:00.";
        const std::string reached = "Session limit reached|Resets at 16:00";
        const std::string fresh = "Session reset|Fresh window. You're good to go.";
        const auto session = WindowKind::session();
        see({.window = test::reading(session, 60, 4h), .timeToLimit = 90min, .status = VornStatus::atRisk});
        server.start();
        expectNotices({near});
        server.crash();
        ASSERT_TRUE(waitUntil([&] { return !notifier.isAuthorized(); }));
        see({.window = test::reading(session, 100, 4h), .status = VornStatus::limited});
        server.start();
        expectNotices({near, reached});
        see({.window = test::reading(session, 0, 9h), .status = VornStatus::comfortable});
        expectNotices({near, reached, fresh});
        waitUntil([&] {
            server.clickTheOldest();  // Nothing happens as long as it is not on the screen.
            return !clicked.empty();
        });
        EXPECT_EQ(clicked, "limited:session@2992272");

        // What was posted too often would come before this.
        center.post({.id = "last", .title = "last"});
        waitUntil([&] { return server.notices().size() >= 4; });
        EXPECT_EQ(server.notices().size(), 4U) << testing::PrintToString(server.notices());
    }

    int argc = 0;
    QCoreApplication application{argc, nullptr};
    test::PrivateBus bus;
};

TEST_F(DesktopNoticesTest, ReachAServerOnceEach) {
    FakeServer server(bus);
    expectEachNoticeOnce(server);
}

TEST_F(DesktopNoticesTest, ReachDunstOnceEach) {
    if (!Dunst::isInstalled()) {
        GTEST_SKIP() << "needs dunst and Xvfb";
    }
    Dunst server(bus);
    expectEachNoticeOnce(server);
}

}  // namespace
}  // namespace vorn
