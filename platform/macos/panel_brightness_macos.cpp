#include "platform/panel_brightness.hpp"

namespace vorn {

/// An image in one colour is coloured by the system; where there is a status colour in it, it follows the windows.
std::unique_ptr<PanelBrightness> PanelBrightness::system(const DesktopAppearance& appearance) {
    return std::make_unique<PanelBrightness>(appearance);
}

}  // namespace vorn
