#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QObject>
#include <utility>

namespace vorn {

/// A question to the message bus itself.
inline QDBusMessage busCall(const char* method, const QVariantList& arguments = {}) {
    auto message =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method);
    message.setArguments(arguments);
    return message;
}

/// Makes the call without waiting for it. `answer` gets a QDBusPendingReply<Values...>, which may be an error, unless
/// `receiver` has gone by then. `timeout`: milliseconds; -1 for what is usual.
template <typename... Values, typename Answer>
void ask(const QDBusConnection& bus, const QDBusMessage& call, QObject* receiver, Answer answer, int timeout = -1) {
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, timeout), receiver);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver, [watcher, answer = std::move(answer)] {
        watcher->deleteLater();
        answer(QDBusPendingReply<Values...>(*watcher));
    });
}

}  // namespace vorn
