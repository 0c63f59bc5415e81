#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <vector>

namespace vorn::test {

/// A notification server that does as it is told and notes what it was asked for. It goes when it is destroyed.
class FakeNotificationServer : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Shown {
        uint id = 0;
        uint replaced = 0;
        QString application;
        QString icon;
        QString title;
        QString body;
        QStringList actions;
        QVariantMap hints;
    };

    FakeNotificationServer(QDBusConnection bus, QStringList capabilities);
    ~FakeNotificationServer() override;

    std::vector<Shown> shown;
    bool isSilent = false;  ///< Takes calls and never answers.
    int questions = 0;      ///< How often it was asked what it can do.

public slots:
    QStringList GetCapabilities();
    uint Notify(const QString& application, uint replaced, const QString& icon, const QString& title,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int timeout);

signals:
    void ActionInvoked(uint id, const QString& action);

private:
    QDBusConnection m_bus;
    QStringList m_capabilities;
    uint m_lastId = 0;
};

}  // namespace vorn::test
