#include "platform/desktop_appearance.hpp"
#include "platform/linux/portal_appearance.hpp"

namespace vorn {

std::unique_ptr<DesktopAppearance> DesktopAppearance::system() {
    return std::make_unique<PortalAppearance>(QDBusConnection::sessionBus());
}

}  // namespace vorn
