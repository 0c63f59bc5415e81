#include "tests/support/private_bus.hpp"

#include <QDBusMessage>
#include <csignal>

#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace vorn::test {

PrivateBus::PrivateBus() {
    const auto services = m_directory / "services";
    std::filesystem::create_directory(services);
    const auto configuration = m_directory.write(
        "bus.conf", "<busconfig><type>session</type><auth>EXTERNAL</auth><listen>unix:dir=" +
                        m_directory.path().string() + "</listen><servicedir>" + services.string() +
                        "</servicedir><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                        "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
    m_daemon.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });  // however the test ends
    m_daemon.start("dbus-daemon",
                   {"--nofork", "--print-address", "--config-file=" + QString::fromStdString(configuration.string())});
    while (!m_address.endsWith('\n') && m_daemon.waitForReadyRead(5000)) {
        m_address += QString::fromUtf8(m_daemon.readAllStandardOutput());
    }
    EXPECT_TRUE(m_address.endsWith('\n')) << "the private bus does not start";
    m_address = m_address.trimmed();
}

PrivateBus::~PrivateBus() {
    for (const QString& name : m_names) {
        QDBusConnection::disconnectFromBus(name);
    }
    kill();
}

QDBusConnection PrivateBus::connection() {
    static int number = 0;
    m_names.append("private " + QString::number(++number));
    return QDBusConnection::connectToBus(m_address, m_names.last());
}

void PrivateBus::makeActivatable(std::string_view name, std::string_view script) {
    const auto program = m_directory.executable("activated", script);
    (void)m_directory.write("services/" + std::string(name) + ".service",
                            "[D-BUS Service]\nName=" + std::string(name) + "\nExec=" + program.string() + "\n");
    auto bus = connection();
    const auto reload = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                       "org.freedesktop.DBus", "ReloadConfig");
    EXPECT_EQ(bus.call(reload).type(), QDBusMessage::ReplyMessage);
}

void PrivateBus::kill() {
    m_daemon.kill();
    m_daemon.waitForFinished();
}

}  // namespace vorn::test
