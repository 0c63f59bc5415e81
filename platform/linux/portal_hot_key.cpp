#include "platform/linux/portal_hot_key.hpp"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <algorithm>

#include "platform/linux/bus_call.hpp"
#include "platform/linux/desktop_portal.hpp"

namespace vorn {

namespace {

using portal::kPath;
using portal::kService;

const QString kShortcuts = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString kRequest = QStringLiteral("org.freedesktop.portal.Request");
const QString kSession = QStringLiteral("org.freedesktop.portal.Session");
const QString kShortcutId = QStringLiteral("show-popover");
const QString kUsualKeys = QStringLiteral("Ctrl+Alt+P");
constexpr uint kSuccess = 0;

/// Part of an object path that no other request on this connection has.
QString freshToken() {
    return QStringLiteral("vorn%1").arg(QRandomGenerator::global()->generate());
}

/// Sorts the program's windows and shortcuts under its name. Desktops that know it from how it was started refuse, and
/// so do older ones; either is fine.
void tellName(const QDBusConnection& bus) {
    const QString name = QGuiApplication::desktopFileName();
    if (name.isEmpty()) {
        return;
    }
    auto message = QDBusMessage::createMethodCall(
        kService, kPath, QStringLiteral("org.freedesktop.host.portal.Registry"), QStringLiteral("Register"));
    message.setArguments({name, QVariantMap()});
    bus.send(message);
}

}  // namespace

QString bindItYourself() {
    return QStringLiteral(
        "This desktop offers no global shortcuts to programs. Bind a key to \"vorn --show-popover\" in its settings.");
}

PortalHotKey::PortalHotKey(const QDBusConnection& bus, std::chrono::milliseconds patience)
    : m_bus(bus),
      m_watcher(kService, bus, QDBusServiceWatcher::WatchForOwnerChange),
      m_patience(patience),
      m_keys(kUsualKeys) {
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<PortalShortcuts>();
    // Signals are matched with the names that slots give their types.
    qRegisterMetaType<PortalShortcuts>("vorn::PortalShortcuts");
    qRegisterMetaType<QDBusObjectPath>();
    m_overdue.setSingleShot(true);
    connect(&m_overdue, &QTimer::timeout, this, [this] { enter(State::absent); });
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) { ownerChanged(newOwner); });
    m_bus.connect(kService, kPath, kShortcuts, QStringLiteral("Activated"), this,
                  SLOT(shortcutActivated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
    m_bus.connect(kService, kPath, kShortcuts, QStringLiteral("ShortcutsChanged"), this,
                  SLOT(shortcutsChanged(QDBusObjectPath, vorn::PortalShortcuts)));
    start();
}

PortalHotKey::~PortalHotKey() {
    if (!m_session.isEmpty() && QCoreApplication::instance() != nullptr) {
        m_bus.send(QDBusMessage::createMethodCall(kService, m_session, kSession, QStringLiteral("Close")));
    }
}

QString PortalHotKey::problem() const {
    switch (m_state) {
        case State::absent:
            return bindItYourself();
        case State::declined:
            return QStringLiteral(
                "The desktop did not allow a global shortcut. Bind a key to \"vorn --show-popover\" in its settings.");
        default:
            return {};
    }
}

void PortalHotKey::ownerChanged(const QString& newOwner) {
    if (newOwner.isEmpty()) {
        forgetResponse();
        m_session.clear();
        if (m_state != State::declined) {
            enter(State::absent);
        }
    } else if (m_state == State::absent) {
        // While it is being asked it comes because of that: the bus keeps the question for a portal that it starts.
        start();
    }
}

void PortalHotKey::start() {
    enter(State::creating);
    m_overdue.start(m_patience);
    tellName(m_bus);
    const QString token = expectResponse(SLOT(sessionResponse(uint, QVariantMap)));
    call(QStringLiteral("CreateSession"), {QVariantMap{{QStringLiteral("handle_token"), token},
                                                       {QStringLiteral("session_handle_token"), freshToken()}}});
}

void PortalHotKey::sessionResponse(uint code, const QVariantMap& results) {
    forgetResponse();
    m_session = results.value(QStringLiteral("session_handle")).toString();
    if (code != kSuccess || !m_session.startsWith(u'/')) {
        m_session.clear();
        enter(State::absent);
        return;
    }
    m_bus.connect(kService, m_session, kSession, QStringLiteral("Closed"), this, SLOT(sessionClosed()));
    bind();
}

void PortalHotKey::bind() {
    enter(State::binding);
    const QString token = expectResponse(SLOT(bindResponse(uint, QVariantMap)));
    const PortalShortcuts shortcuts{{kShortcutId,
                                     {{QStringLiteral("description"), QStringLiteral("Show how much is left")},
                                      {QStringLiteral("preferred_trigger"), QStringLiteral("CTRL+ALT+p")}}}};
    call(QStringLiteral("BindShortcuts"),
         {QVariant::fromValue(QDBusObjectPath(m_session)), QVariant::fromValue(shortcuts), QString(),
          QVariantMap{{QStringLiteral("handle_token"), token}}});
}

void PortalHotKey::bindResponse(uint code, const QVariantMap& results) {
    forgetResponse();
    if (code != kSuccess) {
        enter(State::declined);
        return;
    }
    takeShortcuts(qdbus_cast<PortalShortcuts>(results.value(QStringLiteral("shortcuts"))));
}

void PortalHotKey::takeShortcuts(const PortalShortcuts& shortcuts) {
    const auto ours = std::ranges::find(shortcuts, kShortcutId, &PortalShortcut::first);
    if (ours == shortcuts.end()) {
        enter(State::declined);
        return;
    }
    const QString told = ours->second.value(QStringLiteral("trigger_description")).toString().simplified();
    const QString keys = std::exchange(m_keys, told.isEmpty() ? kUsualKeys : told);
    if (m_state != State::bound) {
        enter(State::bound);
    } else if (keys != m_keys) {
        emit stateChanged();
    }
}

void PortalHotKey::sessionClosed() {
    forgetResponse();
    m_session.clear();
    enter(State::declined);
}

void PortalHotKey::shortcutActivated(const QDBusObjectPath& session, const QString& id, qulonglong /*time*/,
                                     const QVariantMap& options) {
    if (m_session.isEmpty() || session.path() != m_session || id != kShortcutId) {
        return;
    }
    // Without it the compositor does not give the window that opens now the keyboard; Qt takes it from there.
    const auto token = options.value(QStringLiteral("activation_token")).toString();
    if (!token.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    }
    emit pressed();
}

void PortalHotKey::shortcutsChanged(const QDBusObjectPath& session, const PortalShortcuts& shortcuts) {
    if (!m_session.isEmpty() && session.path() == m_session) {
        takeShortcuts(shortcuts);
    }
}

void PortalHotKey::enter(State state) {
    const bool wasRegistered = isRegistered();
    const QString oldProblem = problem();
    m_overdue.stop();
    m_state = state;
    if (isRegistered() != wasRegistered || problem() != oldProblem) {
        emit stateChanged();
    }
}

/// Listens before the call is made, where the portal will answer. Returns the token that makes it answer there.
QString PortalHotKey::expectResponse(const char* slot) {
    forgetResponse();
    const QString token = freshToken();
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    m_request = kPath + QStringLiteral("/request/") + sender + u'/' + token;
    m_requestSlot = slot;
    m_bus.connect(kService, m_request, kRequest, QStringLiteral("Response"), this, slot);
    return token;
}

void PortalHotKey::forgetResponse() {
    ++m_serial;
    if (!m_request.isEmpty()) {
        m_bus.disconnect(kService, m_request, kRequest, QStringLiteral("Response"), this, m_requestSlot);
        m_request.clear();
    }
}

/// The answer comes as a response later; what comes back at once tells only whether the portal can do it.
void PortalHotKey::call(const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(kService, kPath, kShortcuts, method);
    message.setArguments(arguments);
    const auto receive = [this, serial = m_serial](const QDBusPendingReply<>& reply) {
        if (reply.isError() && serial == m_serial) {
            forgetResponse();
            enter(State::absent);
        }
    };
    ask(m_bus, message, this, receive, static_cast<int>(m_patience.count()));
}

}  // namespace vorn
