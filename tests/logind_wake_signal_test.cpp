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
    int wakes = 0;
    LogindWakeSignal signal(bus.connection());
    QObject::connect(&signal, &WakeSignal::woke, [&] { ++wakes; });

    auto logind = bus.connection();
    auto stranger = bus.connection();
    const auto prepareForSleep = [](QDBusConnection& sender, bool isGoingToSleep) {
        auto message =
            QDBusMessage::createSignal("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep");
        message << isGoingToSleep;
        sender.send(message);
    };
    prepareForSleep(stranger, false);
    ASSERT_TRUE(logind.registerService("org.freedesktop.login1"));
    for (const bool isGoingToSleep : {true, false, true, false}) {
        prepareForSleep(logind, isGoingToSleep);
    }
    EXPECT_TRUE(test::waitUntil([&] { return wakes >= 2; }));
    EXPECT_EQ(wakes, 2);

    // Without a bus it stays silent.
    const LogindWakeSignal silent(QDBusConnection("no such connection"));
}

}  // namespace
}  // namespace vorn
