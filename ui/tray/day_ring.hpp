#pragma once

#include <QPainterPath>
#include <Qt>
#include <optional>
#include <variant>
#include <vector>

#include "core/analysis/vorn_steer.hpp"
#include "model/preferences/menu_bar_layout.hpp"

class QColor;
class QPainter;

/// One ring: the arc of use with a mark in its middle that tells which way to steer. y points down; arcs start at the
/// top and fill clockwise. Used by the tray and by the views alike.
namespace vorn::DayRing {

/// A hand where use would be at an even pace, in percent.
struct EvenPace {
    double percent = 0;
    bool operator==(const EvenPace&) const = default;
};
/// An arrow; degrees, positive up.
struct Arrow {
    double angleDegrees = 0;
    bool operator==(const Arrow&) const = default;
};
struct None {
    bool operator==(const None&) const = default;
};
struct Stop {  ///< limit reached
    bool operator==(const Stop&) const = default;
};
struct Dash {  ///< no decision yet
    bool operator==(const Dash&) const = default;
};
using Center = std::variant<EvenPace, Arrow, None, Stop, Dash>;

/// What stands in the middle of a ring. `evenPace`: the used percent that even spending would show now.
Center center(GlyphStyle style, const std::optional<VornSteer>& steer, std::optional<double> evenPace);

struct Mark {
    struct Stroke {
        double width = 0;
        Qt::PenCapStyle cap = Qt::RoundCap;
        bool operator==(const Stroke&) const = default;
    };
    struct Fill {
        bool operator==(const Fill&) const = default;
    };
    QPainterPath path;
    std::variant<Stroke, Fill> style;
    double alpha = 1;  ///< 0..1
};

struct Ring {
    double side = 16;            ///< Of the square it is drawn in; any unit.
    std::optional<double> used;  ///< Percent.
    bool segmented = false;      ///< In seven: the week windows.
    Center center = None{};
};

/// What the ring is drawn with, in the order of painting.
std::vector<Mark> marks(const Ring& ring);

/// Paints the marks from the painter's origin, in one colour.
void paint(QPainter& painter, const Ring& ring, const QColor& color);

}  // namespace vorn::DayRing
