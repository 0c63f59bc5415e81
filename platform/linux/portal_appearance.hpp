#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QMap>
#include <QVariantMap>

#include "platform/desktop_appearance.hpp"

namespace vorn {

/// Settings as the desktop portal tells them: namespace, key, value.
using PortalSettings = QMap<QString, QVariantMap>;

/// What the settings ask for; where they prefer neither dark nor light, the palette decides.
DesktopAppearance::Look lookOf(const PortalSettings& settings, bool hasDarkPalette);

/// Follows the desktop portal's settings and the application's palette. Starts with the palette, since the portal may
/// take its time, and keeps the last settings when the portal goes away.
class PortalAppearance : public DesktopAppearance {
    Q_OBJECT

public:
    explicit PortalAppearance(const QDBusConnection& bus);

    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

private:
    void readSettings();
    void update();

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    PortalSettings m_settings;
};

}  // namespace vorn
