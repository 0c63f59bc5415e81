#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorn {

/// What can stand in the menu bar or tray. The order of the enumerators is the order in a fresh layout.
enum class MenuBarItem : std::uint8_t {
    tightestRing,
    sessionRing,
    sessionPercent,
    sessionReset,
    weekRing,
    weekPercent,
    weekReset,
    paceFactor,
    sessionsLeft,
};
inline constexpr std::array kAllMenuBarItems{
    MenuBarItem::tightestRing, MenuBarItem::sessionRing, MenuBarItem::sessionPercent,
    MenuBarItem::sessionReset, MenuBarItem::weekRing,    MenuBarItem::weekPercent,
    MenuBarItem::weekReset,    MenuBarItem::paceFactor,  MenuBarItem::sessionsLeft};

/// "tightestRing", …: the form stored.
const char* rawValue(MenuBarItem item);
std::optional<MenuBarItem> menuBarItemFrom(std::string_view rawValue);
/// As the settings show it: "Ring · tightest limit".
const char* label(MenuBarItem item);

struct MenuBarEntry {
    MenuBarItem item = MenuBarItem::tightestRing;
    bool isOn = false;
    bool operator==(const MenuBarEntry&) const = default;
};
using MenuBarLayout = std::vector<MenuBarEntry>;

/// `layout` with every item once: the first entry of each in their order, then the missing items, switched off.
MenuBarLayout completed(const MenuBarLayout& layout);

/// A JSON array of objects with the keys "item" and "isOn".
std::string encode(const MenuBarLayout& layout);
/// A complete layout. An element that means nothing here (another version's item, a missing key) is left out. Empty
/// when the text is no JSON array.
std::optional<MenuBarLayout> decodeMenuBarLayout(std::string_view json);

/// A complete layout that shows what two settings of an older version chose, each as it was stored, or empty for none:
/// which rings ("binding", "session", "week", "both"), and which texts ("sessionPercent", "sessionAndWeek",
/// "timeToReset", "paceFactor", "none").
MenuBarLayout migratedMenuBarLayout(std::string_view steerWindow, std::string_view menuBarText);

/// What a ring shows besides the track.
enum class GlyphStyle : std::uint8_t { usage, steer, usageAndSteer };
inline constexpr std::array kAllGlyphStyles{GlyphStyle::usage, GlyphStyle::steer, GlyphStyle::usageAndSteer};

/// "usage", "steer", "usageAndSteer": the form stored.
const char* rawValue(GlyphStyle style);
std::optional<GlyphStyle> glyphStyleFrom(std::string_view rawValue);
const char* title(GlyphStyle style);        ///< "Usage and pace direction"
const char* description(GlyphStyle style);  ///< One sentence or two for the style picker.

/// How square tray cells, as Linux desktops have them, hold the layout.
enum class TrayCells : std::uint8_t {
    perItem,     ///< one cell for every item that is on
    singleRing,  ///< the first ring alone, the rest in its tooltip
};
inline constexpr std::array kAllTrayCells{TrayCells::perItem, TrayCells::singleRing};

/// "perItem", "singleRing": the form stored.
const char* rawValue(TrayCells cells);
std::optional<TrayCells> trayCellsFrom(std::string_view rawValue);

}  // namespace vorn
