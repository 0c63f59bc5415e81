#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QString>

#include "platform/panel_brightness.hpp"

namespace vorn {

/// Xfce's panel is dark by a setting of its own, which is on at first. Follows that while such a panel runs.
class XfcePanelBrightness : public PanelBrightness {
    Q_OBJECT

public:
    XfcePanelBrightness(const QDBusConnection& bus, const DesktopAppearance& appearance);

private slots:
    void settingChanged(const QString& channel, const QString& property, const QDBusVariant& value);

private:
    void ownerChanged(const QString& owner);
    void readSetting();

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    bool m_hasPanel = false;
};

}  // namespace vorn
