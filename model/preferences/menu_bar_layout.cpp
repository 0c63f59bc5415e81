#include "model/preferences/menu_bar_layout.hpp"

#include <algorithm>

#include "core/support/json.hpp"

namespace vorn {
namespace {

struct ItemNames {
    const char* rawValue;
    const char* label;
};

/// By enumerator.
constexpr std::array<ItemNames, kAllMenuBarItems.size()> kItemNames{{
    {"tightestRing", "Ring · tightest limit"},
    {"sessionRing", "Ring · session (5h)"},
    {"sessionPercent", "Session %"},
    {"sessionReset", "Time until session reset"},
    {"weekRing", "Ring · week (7d)"},
    {"weekPercent", "Week %"},
    {"weekReset", "Time until week reset"},
    {"paceFactor", "Pace headroom (×1.8)"},
    {"sessionsLeft", "Sessions left this week (≈3.2s)"},
}};

struct StyleNames {
    const char* rawValue;
    const char* title;
    const char* description;
};

/// By enumerator.
constexpr std::array<StyleNames, kAllGlyphStyles.size()> kStyleNames{{
    {"usage", "Usage", "Arc = used, hand = even pace. Continuous ring = 5-hour session, seven segments = week."},
    {"steer", "Pace direction", "Arrow up = room to speed up, down = ease off."},
    {"usageAndSteer", "Usage and pace direction",
     "Arc = used, arrow = speed up or ease off. Continuous ring = 5-hour session, seven segments = week."},
}};

const ItemNames& namesOf(MenuBarItem item) {
    return kItemNames.at(static_cast<std::size_t>(item));
}

const StyleNames& namesOf(GlyphStyle style) {
    return kStyleNames.at(static_cast<std::size_t>(style));
}

template <typename All>
std::optional<typename All::value_type> named(const All& all, std::string_view name) {
    const auto found = std::ranges::find_if(all, [name](auto value) { return name == rawValue(value); });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

bool holds(const MenuBarLayout& layout, MenuBarItem item) {
    return std::ranges::find(layout, item, &MenuBarEntry::item) != layout.end();
}

std::optional<MenuBarEntry> decodeEntry(const nlohmann::json& value) try {
    const auto& isOn = requireMember(value, "isOn");
    const auto item = menuBarItemFrom(decodeText(requireMember(value, "item")));
    return item && isOn.is_boolean() ? std::optional(MenuBarEntry{.item = *item, .isOn = isOn.get<bool>()})
                                     : std::nullopt;
} catch (const DecodingError&) {
    return std::nullopt;
}

std::vector<MenuBarItem> chosenRings(std::string_view steerWindow) {
    if (steerWindow == "session") {
        return {MenuBarItem::sessionRing};
    }
    if (steerWindow == "week") {
        return {MenuBarItem::weekRing};
    }
    if (steerWindow == "both") {
        return {MenuBarItem::sessionRing, MenuBarItem::weekRing};
    }
    return {MenuBarItem::tightestRing};
}

std::vector<MenuBarItem> chosenTexts(std::string_view menuBarText) {
    if (menuBarText == "sessionAndWeek") {
        return {MenuBarItem::sessionPercent, MenuBarItem::weekPercent};
    }
    if (menuBarText == "timeToReset") {
        return {MenuBarItem::sessionReset};
    }
    if (menuBarText == "paceFactor") {
        return {MenuBarItem::paceFactor};
    }
    if (menuBarText == "none") {
        return {};
    }
    return {MenuBarItem::sessionPercent};
}

/// The percentage that belongs beside a ring.
std::optional<MenuBarItem> percentOf(MenuBarItem ring) {
    switch (ring) {
        case MenuBarItem::sessionRing:
            return MenuBarItem::sessionPercent;
        case MenuBarItem::weekRing:
            return MenuBarItem::weekPercent;
        default:
            return std::nullopt;
    }
}

}  // namespace

const char* rawValue(MenuBarItem item) {
    return namesOf(item).rawValue;
}

std::optional<MenuBarItem> menuBarItemFrom(std::string_view rawValue) {
    return named(kAllMenuBarItems, rawValue);
}

const char* label(MenuBarItem item) {
    return namesOf(item).label;
}

MenuBarLayout completed(const MenuBarLayout& layout) {
    MenuBarLayout result;
    const auto addNew = [&result](const MenuBarEntry& entry) {
        if (!holds(result, entry.item)) {
            result.push_back(entry);
        }
    };
    std::ranges::for_each(layout, addNew);
    for (const MenuBarItem item : kAllMenuBarItems) {
        addNew({.item = item, .isOn = false});
    }
    return result;
}

std::string encode(const MenuBarLayout& layout) {
    auto list = nlohmann::json::array();
    for (const MenuBarEntry& entry : layout) {
        list.push_back({{"item", rawValue(entry.item)}, {"isOn", entry.isOn}});
    }
    return dumpJson(list);
}

std::optional<MenuBarLayout> decodeMenuBarLayout(std::string_view json) {
    const auto document = parseJson(json);
    if (!document || !document->is_array()) {
        return std::nullopt;
    }
    MenuBarLayout layout;
    for (const nlohmann::json& element : *document) {
        if (const auto entry = decodeEntry(element)) {
            layout.push_back(*entry);
        }
    }
    return completed(layout);
}

MenuBarLayout migratedMenuBarLayout(std::string_view steerWindow, std::string_view menuBarText) {
    const std::vector<MenuBarItem> texts = chosenTexts(menuBarText);
    MenuBarLayout layout;
    for (const MenuBarItem ring : chosenRings(steerWindow)) {
        layout.push_back({.item = ring, .isOn = true});
        const auto percent = percentOf(ring);
        if (percent && std::ranges::find(texts, *percent) != texts.end()) {
            layout.push_back({.item = *percent, .isOn = true});
        }
    }
    for (const MenuBarItem text : texts) {
        layout.push_back({.item = text, .isOn = true});  // one that is there already is left out below
    }
    return completed(layout);
}

const char* rawValue(GlyphStyle style) {
    return namesOf(style).rawValue;
}

std::optional<GlyphStyle> glyphStyleFrom(std::string_view rawValue) {
    return named(kAllGlyphStyles, rawValue);
}

const char* title(GlyphStyle style) {
    return namesOf(style).title;
}

const char* description(GlyphStyle style) {
    return namesOf(style).description;
}

const char* rawValue(TrayCells cells) {
    return cells == TrayCells::perItem ? "perItem" : "singleRing";
}

std::optional<TrayCells> trayCellsFrom(std::string_view rawValue) {
    return named(kAllTrayCells, rawValue);
}

}  // namespace vorn
