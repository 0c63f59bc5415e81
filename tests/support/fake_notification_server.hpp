#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVariantMap>

#include <gtest/gtest.h>

namespace vorn::test {

/// A notification server that does as it is told and notes what it was asked for. It goes when it is destroyed.
class FakeNotificationServer : public QDBusVirtualObject {
public:
    FakeNotificationServer(QDBusConnection bus, QStringList capabilities)
        : m_bus(std::move(bus)), m_capabilities(std::move(capabilities)) {
        EXPECT_TRUE(m_bus.registerVirtualObject("/org/freedesktop/Notifications", this));
        EXPECT_TRUE(m_bus.registerService(kName));
    }
    ~FakeNotificationServer() override {
        m_bus.unregisterService(kName);
        m_bus.unregisterObject("/org/freedesktop/Notifications");
        QDBusConnection::disconnectFromBus(m_bus.name());
    }

    /// The user clicks that part of a notice.
    void invoke(uint id, const QString& action) {
        auto signal = QDBusMessage::createSignal("/org/freedesktop/Notifications", kName, "ActionInvoked");
        m_bus.send(signal << id << action);
    }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const bool isNotice = message.member() == "Notify";
        const auto arguments = message.arguments();
        uint id = 0;
        if (isNotice) {
            const uint replaced = arguments.at(1).toUInt();
            id = replaced != 0 ? replaced : ++m_lastId;
            notices.push_back(arguments);
        } else {
            ++questions;
        }
        return isSilent || bus.send(message.createReply(isNotice ? QVariant(id) : QVariant(m_capabilities)));
    }

    std::vector<QVariantList> notices;  ///< The arguments of `Notify`; those without a number to replace get 1, 2, …
    int questions = 0;                  ///< How often it was asked what it can do.
    bool isSilent = false;              ///< Takes calls and never answers.

private:
    static constexpr auto kName = "org.freedesktop.Notifications";
    QDBusConnection m_bus;
    QStringList m_capabilities;
    uint m_lastId = 0;
};

}  // namespace vorn::test
