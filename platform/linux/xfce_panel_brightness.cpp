#include "platform/linux/xfce_panel_brightness.hpp"

#include "platform/linux/bus_call.hpp"

namespace vorn {
namespace {

const QString kPanel = QStringLiteral("org.xfce.Panel");
const QString kSettings = QStringLiteral("org.xfce.Xfconf");
const QString kPath = QStringLiteral("/org/xfce/Xfconf");
const QString kChannel = QStringLiteral("xfce4-panel");
const QString kDarkMode = QStringLiteral("/panels/dark-mode");

}  // namespace

XfcePanelBrightness::XfcePanelBrightness(const QDBusConnection& bus, const DesktopAppearance& appearance)
    : PanelBrightness(appearance), m_bus(bus), m_watcher(kPanel, bus, QDBusServiceWatcher::WatchForOwnerChange) {
    qRegisterMetaType<QDBusVariant>();  // Signals are matched with the names that slots give their types.
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { ownerChanged(owner); });
    // Without the service's name, since Qt would wait for the bus to say who that is.
    m_bus.connect({}, kPath, kSettings, QStringLiteral("PropertyChanged"), this,
                  SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask<QString>(m_bus, busCall("GetNameOwner", {kPanel}), this, [this](const auto& owner) {
        if (!owner.isError()) {
            ownerChanged(owner.value());
        }
    });
}

void XfcePanelBrightness::ownerChanged(const QString& owner) {
    m_hasPanel = !owner.isEmpty();
    if (m_hasPanel) {
        readSetting();
    } else {
        setPanelIsDark({});
    }
}

void XfcePanelBrightness::readSetting() {
    auto message = QDBusMessage::createMethodCall(kSettings, kPath, kSettings, QStringLiteral("GetProperty"));
    message.setArguments({kChannel, kDarkMode});
    ask<QDBusVariant>(m_bus, message, this, [this](const auto& reply) {
        settingChanged(kChannel, kDarkMode, reply.isError() ? QDBusVariant(true) : reply.value());
    });
}

void XfcePanelBrightness::settingChanged(const QString& channel, const QString& property, const QDBusVariant& value) {
    if (m_hasPanel && channel == kChannel && property == kDarkMode) {
        // Off, the panel follows the theme of the windows.
        setPanelIsDark(value.variant().toBool() ? std::optional(true) : std::nullopt);
    }
}

}  // namespace vorn
