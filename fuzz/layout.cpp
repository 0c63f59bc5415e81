#include <algorithm>

#include "fuzz/fuzz_target.hpp"
#include "model/preferences/menu_bar_layout.hpp"

/// The layout of the menu bar as the preferences keep it, and what older versions kept instead.
namespace vorn::fuzz {
namespace {

void requireComplete(const MenuBarLayout& layout) {
    require(layout.size() == kAllMenuBarItems.size(), "a layout holds every item once");
    for (const MenuBarItem item : kAllMenuBarItems) {
        require(std::ranges::count(layout, item, &MenuBarEntry::item) == 1, "a layout holds every item once");
    }
    require(completed(layout) == layout, "a complete layout needs nothing");
    require(decodeMenuBarLayout(encode(layout)) == layout, "a layout is the same after a way through text");
}

}  // namespace

void checkInput(std::string_view input) {
    if (const auto layout = decodeMenuBarLayout(input)) {
        requireComplete(*layout);
    }
    const auto comma = std::min(input.find(','), input.size());
    requireComplete(migratedMenuBarLayout(input.substr(0, comma), input.substr(std::min(comma + 1, input.size()))));
    const auto item = menuBarItemFrom(input);
    require(!item || rawValue(*item) == input, "an item is the same after a way through its name");
    const auto style = glyphStyleFrom(input);
    require(!style || rawValue(*style) == input, "a style is the same after a way through its name");
}

}  // namespace vorn::fuzz
