#include "platform/linux/logind_wake_signal.hpp"

#include <QCoreApplication>
#include <QDBusMessage>

#include <gtest/gtest.h>

#include "tests/support/private_bus.hpp"
#include "tests/support/wait_until.hpp"

namespace vorn {
namespace {

TEST(LogindWakeSignal, TellsWhenTheMachineIsAwakeAgain) {
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    test::PrivateBus bus;
    const LogindWakeSignal silent(QDBusConnection("no such connection"));
    LogindWakeSignal signal(bus.connection());
    int wakes = 0;
    QObject::connect(&signal, &WakeSignal::woke, [&] { ++wakes; });

    auto logind = bus.connection();
    ASSERT_TRUE(logind.registerService("org.freedesktop.login1"));
    const auto announce = [](const QDBusConnection& sender, bool isGoingToSleep) {
        auto message =
            QDBusMessage::createSignal("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep");
        EXPECT_TRUE(sender.send(message << isGoingToSleep));
    };
    announce(bus.connection(), false);  // Somebody who is not logind.
    for (const bool isGoingToSleep : {true, false, true, false}) {
        announce(logind, isGoingToSleep);
    }
    test::waitUntil([&] { return wakes >= 2; });
    EXPECT_EQ(wakes, 2);
}

}  // namespace
}  // namespace vorn
