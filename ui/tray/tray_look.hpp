#pragma once

#include <vector>

#include "ui/tray/menu_bar_glyph.hpp"

namespace vorn {

class DesktopAppearance;
class PanelBrightness;
class Preferences;

/// How the tray's image is drawn on that panel: what the user chose, in colours that can be seen there.
MenuBarGlyph::Look trayLook(const Preferences& preferences, const DesktopAppearance& appearance,
                            const PanelBrightness& panel);

/// What stands there when only one ring is wanted: the first of the user's rings, or that of the tightest limit.
std::vector<MenuBarItem> singleRing(const std::vector<MenuBarItem>& items);

}  // namespace vorn
