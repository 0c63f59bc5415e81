#include "platform/linux/portal_appearance.hpp"

#include <QDBusMetaType>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include "platform/linux/bus_call.hpp"
#include "platform/linux/desktop_portal.hpp"

namespace vorn {

namespace {

using portal::kPath;
using portal::kService;

const QString kSettings = QStringLiteral("org.freedesktop.portal.Settings");
const QString kAppearance = QStringLiteral("org.freedesktop.appearance");
/// Tells about animations where the portal does not yet.
const QString kInterface = QStringLiteral("org.gnome.desktop.interface");

constexpr uint kPrefersDark = 1;
constexpr uint kPrefersLight = 2;
constexpr uint kHighContrast = 1;
constexpr uint kReducedMotion = 1;
constexpr int kMiddleLightness = 128;

bool hasDarkPalette() {
    return QGuiApplication::palette().color(QPalette::Window).lightness() < kMiddleLightness;
}

}  // namespace

DesktopAppearance::Look lookOf(const PortalSettings& settings, bool hasDarkPalette) {
    const auto appearance = settings.value(kAppearance);
    const auto scheme = appearance.value(QStringLiteral("color-scheme")).toUInt();
    return {.isDark = scheme == kPrefersDark || (scheme != kPrefersLight && hasDarkPalette),
            .highContrast = appearance.value(QStringLiteral("contrast")).toUInt() == kHighContrast,
            .reducedMotion = appearance.value(QStringLiteral("reduced-motion")).toUInt() == kReducedMotion ||
                             !settings.value(kInterface).value(QStringLiteral("enable-animations"), true).toBool()};
}

PortalAppearance::PortalAppearance(const QDBusConnection& bus)
    : m_bus(bus), m_watcher(kService, bus, QDBusServiceWatcher::WatchForRegistration) {
    qDBusRegisterMetaType<PortalSettings>();
    qRegisterMetaType<QDBusVariant>();  // Signals are matched with the names that slots give their types.
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &PortalAppearance::readSettings);
    m_bus.connect(kService, kPath, kSettings, QStringLiteral("SettingChanged"), this,
                  SLOT(settingChanged(QString, QString, QDBusVariant)));
    QCoreApplication::instance()->installEventFilter(this);
    update();
    readSettings();
}

bool PortalAppearance::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        update();
    }
    return DesktopAppearance::eventFilter(watched, event);
}

void PortalAppearance::readSettings() {
    auto message = QDBusMessage::createMethodCall(kService, kPath, kSettings, QStringLiteral("ReadAll"));
    message.setArguments({QStringList{kAppearance, kInterface}});
    ask<PortalSettings>(m_bus, message, this, [this](const auto& reply) {
        if (!reply.isError()) {
            m_settings = reply.value();
            update();
        }
    });
}

void PortalAppearance::settingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
    if (space == kAppearance || space == kInterface) {
        m_settings[space].insert(key, value.variant());
        update();
    }
}

void PortalAppearance::update() {
    setLook(lookOf(m_settings, hasDarkPalette()));
}

}  // namespace vorn
