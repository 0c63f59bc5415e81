#include "platform/linux/tray_host.hpp"

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QSystemTrayIcon>
#include <chrono>
#include <utility>

#include "platform/linux/bus_call.hpp"

namespace vorn {

using namespace std::chrono_literals;

namespace {

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");

/// On the bus with panels that add to the left.
const QString kLeftAddingPanel = QStringLiteral("org.xfce.Panel");

/// How long the bus gets ahead of the embedding. A starting panel often offers the latter a moment earlier.
constexpr auto kFirstLook = 2s;

bool mayEmbed() {
    return QGuiApplication::platformName() == QStringLiteral("xcb");
}

}  // namespace

TrayHost::TrayHost() : m_bus(QDBusConnection::sessionBus()) {
    m_firstLook.setSingleShot(true);
    connect(&m_firstLook, &QTimer::timeout, this, &TrayHost::lookForEmbedding);
    awaitEmbedding();
    if (!m_bus.isConnected()) {
        return;
    }
    auto* const watch = new QDBusServiceWatcher(kWatcher, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watch, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& /*service*/, const QString& /*before*/, const QString& now) {
                // One may take over from another.
                watcherWent();
                if (!now.isEmpty()) {
                    watcherCame();
                }
            });
    for (const char* const signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        m_bus.connect(kWatcher, kWatcherPath, kWatcher, QLatin1String(signal), this, SLOT(hostsChanged()));
    }
    askForOwner(kWatcher, [this](bool isThere) {
        if (isThere && !m_isWatcherThere) {
            watcherCame();
        }
    });
}

void TrayHost::askForOwner(const QString& name, std::function<void(bool)> answer) {
    ask<bool>(m_bus, busCall("NameHasOwner", {name}), this,
              [answer = std::move(answer)](const auto& reply) { answer(reply.isValid() && reply.value()); });
}

void TrayHost::awaitEmbedding() {
    if (mayEmbed()) {
        m_firstLook.start(kFirstLook);
    }
}

/// Only while there is nothing better: each look costs a round trip to the X server.
void TrayHost::tick() {
    if (mayEmbed() && !m_isWatcherThere && !m_firstLook.isActive()) {
        lookForEmbedding();
    }
}

void TrayHost::watcherCame() {
    m_isWatcherThere = true;
    m_firstLook.stop();
    askForOwner(kLeftAddingPanel, [this, watcher = ++m_watchers](bool isThere) {
        if (m_isWatcherThere && watcher == m_watchers) {
            m_addsToTheLeft = isThere;
            setKind(Kind::notifier);
            hostsChanged();
        }
    });
}

void TrayHost::watcherWent() {
    m_isWatcherThere = false;
    setHasHost(false);
    setKind(Kind::none);
    awaitEmbedding();
}

void TrayHost::hostsChanged() {
    auto call = QDBusMessage::createMethodCall(
        kWatcher, kWatcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << kWatcher << QStringLiteral("IsStatusNotifierHostRegistered");
    call.setAutoStartService(false);
    ask<QDBusVariant>(m_bus, call, this, [this](const auto& reply) {
        // A watcher that does not answer this one is taken at its word.
        setHasHost(m_isWatcherThere && (!reply.isValid() || reply.value().variant().toBool()));
    });
}

void TrayHost::lookForEmbedding() {
    // Qt remembers for good whether there was a watcher when it was first asked. It is asked only when there is none,
    // so that it always answers for embedding. Nothing tells how a panel that embeds orders its windows; the one that
    // was tried adds to the left.
    m_addsToTheLeft = true;
    setKind(QSystemTrayIcon::isSystemTrayAvailable() ? Kind::embedded : Kind::none);
}

void TrayHost::setKind(Kind kind) {
    const bool wasShown = isShown();
    if (std::exchange(m_kind, kind) == kind) {
        return;
    }
    emit restarted();
    if (isShown() != wasShown) {
        emit shownChanged();
    }
}

void TrayHost::setHasHost(bool hasHost) {
    const bool wasShown = isShown();
    m_hasHost = hasHost;
    if (isShown() != wasShown) {
        emit shownChanged();
    }
}

}  // namespace vorn
