#include <QDBusConnection>

#include "platform/linux/xfce_panel_brightness.hpp"

namespace vorn {
namespace {

/// GNOME's bar is dark whatever the windows are.
class DarkPanel : public PanelBrightness {
public:
    explicit DarkPanel(const DesktopAppearance& appearance) : PanelBrightness(appearance) { setPanelIsDark(true); }
};

bool isGnome() {
    const QByteArrayList desktops = qgetenv("XDG_CURRENT_DESKTOP").split(':');
    return desktops.contains("GNOME") || desktops.contains("Unity");
}

}  // namespace

std::unique_ptr<PanelBrightness> PanelBrightness::system(const DesktopAppearance& appearance) {
    if (isGnome()) {
        return std::make_unique<DarkPanel>(appearance);
    }
    return std::make_unique<XfcePanelBrightness>(QDBusConnection::sessionBus(), appearance);
}

}  // namespace vorn
