#include <QCoreApplication>
#include <QSettings>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include "model/notifier.hpp"
#include "model/preferences/preferences.hpp"
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

struct Server {
    std::function<void()> start;
    std::function<void()> crash;
    std::function<QString()> notices;  ///< All so far, as "title|body" a line.
    std::function<void()> clickTheOldest;
};

class DesktopNoticesTest : public testing::Test {
protected:
    void expectEachNoticeOnce(const Server& server) {
        const auto store = QString::fromStdString((bus.directory() / "preferences.ini").string());
        const Preferences preferences(std::make_unique<QSettings>(store, QSettings::IniFormat));
        FreedesktopNotificationCenter center(bus.connection());
        QString clicked;
        QObject::connect(&center, &NotificationCenter::activated, [&](const QString& id) { clicked = id; });
        Notifier notifier(&center);
        std::vector<WindowAssessment> assessments;
        const auto evaluate = [&] {
            notifier.evaluate(assessments, preferences, kNow);
        };
        notifier.requestAuthorization(evaluate);
        const auto see = [&](VornStatus status, double usedPercent, Seconds resetsIn) {
            assessments = {{.window = test::reading(WindowKind::session(), usedPercent, resetsIn),
                            .timeToLimit = 90min,
                            .status = status}};
            evaluate();
            evaluate();
        };
        QString expected;
        const auto expectAlso = [&](const QString& notice) {
            expected += notice + '\n';
            waitUntil([&] { return server.notices().size() >= expected.size(); });
            EXPECT_EQ(server.notices().toStdString(), expected.toStdString());
        };

        see(VornStatus::atRisk, 60, 4h);
        server.start();
        expectAlso(
            "Session: limit in ~1h 30m|At your current pace you'll hit the limit around 13:30. It resets at "
            "16:00");
        server.crash();
        ASSERT_TRUE(waitUntil([&] { return !notifier.isAuthorized(); }));
        see(VornStatus::limited, 100, 4h);
        server.start();
        expectAlso("Session limit reached|Resets at 16:00");
        see(VornStatus::comfortable, 0, 9h);
        expectAlso("Session reset|Fresh window. You're good to go.");
        waitUntil([&] {
            server.clickTheOldest();  // Nothing happens as long as it is not on the screen.
            return !clicked.isEmpty();
        });
        EXPECT_EQ(clicked, "limited:session@2992272");
        center.post({.id = "last", .title = "last"});
        expectAlso("last|");  // What was posted too often would come before.
    }

    int argc = 0;
    QCoreApplication application{argc, nullptr};
    test::ScopedEnvironment zone{"TZ", "UTC"};
    test::ScopedEnvironment locale{"LC_ALL", "C"};
    test::PrivateBus bus;
};

TEST_F(DesktopNoticesTest, ReachAServerOnceEach) {
    std::unique_ptr<test::FakeNotificationServer> server;
    QString earlier;
    const auto notices = [&] {
        QString all = earlier;
        for (const auto& arguments : server->notices) {
            all += arguments[3].toString() + '|' + arguments[4].toString() + '\n';
        }
        return all;
    };
    expectEachNoticeOnce({
        .start = [&] { server = std::make_unique<test::FakeNotificationServer>(bus.connection(), QStringList()); },
        .crash =
            [&] {
                earlier = notices();
                server.reset();
            },
        .notices = notices,
        .clickTheOldest = [&] { server->invoke(1, "default"); },
    });
}

TEST_F(DesktopNoticesTest, ReachDunstOnceEach) {
    if (QStandardPaths::findExecutable("dunst").isEmpty() || QStandardPaths::findExecutable("Xvfb").isEmpty()) {
        GTEST_SKIP() << "needs dunst and Xvfb";
    }
    QProcess display;
    display.start("Xvfb", {"-displayfd", "1", "-screen", "0", "640x480x24", "-nolisten", "tcp", "-noreset"});
    display.waitForReadyRead(10'000);
    const auto number = display.readAllStandardOutput().trimmed();
    const test::ScopedEnvironment displayName("DISPLAY", (":" + number).constData());
    const test::ScopedEnvironment noWayland("WAYLAND_DISPLAY", nullptr);
    const test::ScopedEnvironment address("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8().constData());

    const auto log = bus.directory().write("log", "");
    const auto script = bus.directory().executable("note", "printf '%s|%s\\n' \"$2\" \"$3\" >>'" + log.string() + "'");
    const auto configuration = bus.directory().write(
        "dunstrc", "[urgency_normal]\ntimeout = 0\n[all]\nsummary = \"*\"\nscript = " + script.string() + "\n");
    QProcess dunst;
    expectEachNoticeOnce({
        .start =
            [&] {
                dunst.start("dunst", {"-conf", QString::fromStdString(configuration.string())});
            },
        .crash =
            [&] {
                dunst.kill();
                dunst.waitForFinished();
            },
        .notices = [&] { return QString::fromStdString(test::readAll(log)); },
        .clickTheOldest =
            [] {
                QProcess::execute("dunstctl", {"action", "0"});
            },
    });
    for (auto* process : {&dunst, &display}) {
        process->terminate();
        process->waitForFinished();
    }
}

}  // namespace
}  // namespace vorn
