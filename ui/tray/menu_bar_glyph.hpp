#pragma once

#include <QColor>
#include <QImage>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "core/analysis/answer.hpp"
#include "model/preferences/menu_bar_layout.hpp"
#include "ui/tray/day_ring.hpp"

namespace vorn {

struct RingPart {
    WindowKind kind;
    std::optional<WindowAssessment> assessment;
    std::optional<VornSteer> steer;
    bool operator==(const RingPart&) const = default;
};
struct TextPart {
    MenuBarItem item;  ///< What the text is of: the cells break it differently.
    std::string text;
    bool operator==(const TextPart&) const = default;
};
using MenuBarPart = std::variant<RingPart, TextPart>;

/// The user's chosen items and what the answer says of them as one image, or as one square image each.
namespace MenuBarGlyph {

/// What there is to show of `items`, in their order; what has no data yet is left out. Never empty.
std::vector<MenuBarPart> parts(std::span<const MenuBarItem> items, const Answer& answer);

/// The colours of one panel.
struct Palette {
    QColor foreground;
    QColor atRisk;
    QColor limited;

    static Palette onDark();
    static Palette onLight();
    static Palette highContrast(bool dark);
    bool operator==(const Palette&) const = default;
};

struct Look {
    GlyphStyle style = GlyphStyle::usageAndSteer;
    bool tint = true;  ///< Rings take the colour of their window's status.
    Palette palette;
    bool operator==(const Look&) const = default;
};

/// What `DayRing` draws for a part: in the style `steer` nothing is said about use.
DayRing::Ring ring(const RingPart& part, GlyphStyle style, double side);

/// All parts in one strip of that height in device pixels.
QImage image(std::span<const MenuBarPart> parts, const Look& look, int height);
/// Whether the strip is in one colour only, so that the system may colour it (a template image on macOS).
bool isTemplate(std::span<const MenuBarPart> parts, const Look& look);
/// One part in a square of `side` device pixels, readable from 16 on.
QImage cell(const MenuBarPart& part, const Look& look, int side);

}  // namespace MenuBarGlyph
}  // namespace vorn
