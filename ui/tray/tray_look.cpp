#include "ui/tray/tray_look.hpp"

#include <algorithm>

#include "model/preferences/preferences.hpp"
#include "platform/desktop_appearance.hpp"
#include "platform/panel_brightness.hpp"

namespace vorn {
namespace {

bool isRing(MenuBarItem item) {
    return item == MenuBarItem::tightestRing || item == MenuBarItem::sessionRing || item == MenuBarItem::weekRing;
}

MenuBarGlyph::Palette palette(bool highContrast, bool isDark) {
    if (highContrast) {
        return MenuBarGlyph::Palette::highContrast(isDark);
    }
    return isDark ? MenuBarGlyph::Palette::onDark() : MenuBarGlyph::Palette::onLight();
}

}  // namespace

MenuBarGlyph::Look trayLook(const Preferences& preferences, const DesktopAppearance& appearance,
                            const PanelBrightness& panel) {
    return {.style = preferences.glyphStyle(),
            .tint = preferences.colorWhenAtRisk(),
            .palette = palette(appearance.highContrast(), panel.isDark())};
}

std::vector<MenuBarItem> singleRing(const std::vector<MenuBarItem>& items) {
    const auto ring = std::ranges::find_if(items, isRing);
    return {ring == items.end() ? MenuBarItem::tightestRing : *ring};
}

}  // namespace vorn
