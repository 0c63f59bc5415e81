#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QStringList>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/notifier_item.hpp"
#include "tests/support/wait_until.hpp"

namespace vorn::test {

/// A panel: the watcher and the host in one, on a connection of its own.
class FakePanel : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered MEMBER hasHost)

public:
    explicit FakePanel(bool addsToTheLeft = false) {
        bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), this, QDBusConnection::ExportAllContents);
        if (addsToTheLeft) {
            bus.registerService(QStringLiteral("org.xfce.Panel"));
        }
        bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
        bus.connect({}, {}, QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("NewIcon"), this,
                    SLOT(iconChanged()));
        bus.connect({}, {}, QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("NewToolTip"), this,
                    SLOT(toolTipChanged()));
    }
    ~FakePanel() override {
        const QString name = bus.name();
        bus.unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
        bus = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(name);
    }

    /// A property of an item, asked for as a host does.
    QVariant property(const QString& item, const char* name) {
        return answer(get(item, name)).arguments().value(0).value<QDBusVariant>().variant();
    }
    QDBusMessage call(const QString& item, const char* path, const char* interface, const char* method,
                      const QVariantList& arguments) {
        auto message =
            QDBusMessage::createMethodCall(item, QLatin1String(path), QLatin1String(interface), QLatin1String(method));
        message.setArguments(arguments);
        return answer(message);
    }
    /// The numbers that the cells show, in the order in which this panel has them.
    std::vector<int> shown() {
        std::vector<int> numbers;
        for (const QString& item : items) {
            if (property(item, "Status") != QStringLiteral("Active")) {
                continue;
            }
            const auto pixmaps = qdbus_cast<TrayPixmaps>(property(item, "IconPixmap"));
            numbers.push_back(pixmaps.isEmpty() ? -1 : static_cast<unsigned char>(pixmaps.front().bytes.at(3)));
        }
        return numbers;
    }

    QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("panel-%1").arg(++s_count));
    bool hasHost = true;
    QStringList items;  ///< As they were registered.
    int iconChanges = 0;
    int toolTipChanges = 0;

public slots:
    void RegisterStatusNotifierItem(const QString& service) {  // NOLINT(readability-identifier-naming)
        items.append(service);
        bus.asyncCall(get(service, "IconPixmap"));
        // The owner's end is the only way in which an item goes.
        auto* const watch = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForUnregistration, this);
        connect(watch, &QDBusServiceWatcher::serviceUnregistered, this, [this, service] { items.removeAll(service); });
    }

    void iconChanged() { ++iconChanges; }
    void toolTipChanged() { ++toolTipChanges; }

signals:
    void StatusNotifierHostRegistered();

private:
    static QDBusMessage get(const QString& item, const char* name) {
        auto message =
            QDBusMessage::createMethodCall(item, QStringLiteral("/StatusNotifierItem"),
                                           QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
        message << QStringLiteral("org.kde.StatusNotifierItem") << QLatin1String(name);
        return message;
    }
    QDBusMessage answer(const QDBusMessage& question) {
        const QDBusPendingCall pending = bus.asyncCall(question);
        waitFor([&] { return pending.isFinished(); });
        EXPECT_FALSE(pending.isError()) << pending.error().message().toStdString();
        return pending.reply();
    }

    inline static int s_count = 0;
};

}  // namespace vorn::test
