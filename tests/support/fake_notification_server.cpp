#include "tests/support/fake_notification_server.hpp"

#include <gtest/gtest.h>

namespace vorn::test {

namespace {
constexpr auto kService = "org.freedesktop.Notifications";
}

FakeNotificationServer::FakeNotificationServer(QDBusConnection bus, QStringList capabilities)
    : m_bus(std::move(bus)), m_capabilities(std::move(capabilities)) {
    EXPECT_TRUE(m_bus.registerObject("/org/freedesktop/Notifications", this,
                                     QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    EXPECT_TRUE(m_bus.registerService(kService));
}

FakeNotificationServer::~FakeNotificationServer() {
    m_bus.unregisterService(kService);
    QDBusConnection::disconnectFromBus(m_bus.name());
}

QStringList FakeNotificationServer::GetCapabilities() {
    ++questions;
    setDelayedReply(isSilent);
    return m_capabilities;
}

uint FakeNotificationServer::Notify(const QString& application, uint replaced, const QString& icon,
                                    const QString& title, const QString& body, const QStringList& actions,
                                    const QVariantMap& hints, int /*timeout*/) {
    setDelayedReply(isSilent);
    const uint id = replaced != 0 ? replaced : ++m_lastId;
    shown.push_back({.id = id,
                     .replaced = replaced,
                     .application = application,
                     .icon = icon,
                     .title = title,
                     .body = body,
                     .actions = actions,
                     .hints = hints});
    return id;
}

}  // namespace vorn::test
