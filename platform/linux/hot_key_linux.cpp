#include <QGuiApplication>

#include "platform/hot_key.hpp"
#include "platform/linux/portal_hot_key.hpp"
#include "platform/linux/x11_hot_key.hpp"

namespace vorn {

namespace {

/// Where there is neither an X server nor a desktop to ask.
class NoHotKey : public HotKey {
public:
    [[nodiscard]] bool isRegistered() const override { return false; }
    [[nodiscard]] QString problem() const override { return bindItYourself(); }
    [[nodiscard]] QString keys() const override { return QStringLiteral("Ctrl+Alt+P"); }
};

}  // namespace

std::unique_ptr<HotKey> HotKey::system() {
    // Qt's platform without a screen has the interface as well, but no connection.
    if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>(); x11 && x11->connection()) {
        return std::make_unique<X11HotKey>(x11->connection());
    }
    if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) {
        // A connection of its own: the portal takes a program's name only before anything else is asked on it.
        return std::make_unique<PortalHotKey>(
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("vorn-hot-key")));
    }
    return std::make_unique<NoHotKey>();
}

}  // namespace vorn
