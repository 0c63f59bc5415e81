#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <cstdint>

namespace vorn {

/// What the popover belongs to on the screen, in device-independent pixels.
struct PopoverAnchor {
    enum class Kind : std::uint8_t {
        screenCorner,  ///< nothing: the top right corner of the screen that `rect` lies on
        cursor,        ///< where the mouse stands, which clicked something in a panel
        trayCell,      ///< `rect` is the cell, or all cells together
    };
    Kind kind = Kind::screenCorner;
    QRect rect;

    /// The mouse at `position`.
    static PopoverAnchor atCursor(QPoint position) { return {Kind::cursor, QRect(position, QSize(1, 1))}; }
    static PopoverAnchor inCorner(QPoint onScreen) { return {Kind::screenCorner, QRect(onScreen, QSize(1, 1))}; }
    bool operator==(const PopoverAnchor&) const = default;
};

/// Where a popover of `size` goes: beside its anchor, on the side that faces the screen's middle, wholly within
/// `available` as long as it fits there (else its top left corner does). `screen` and `available`: the screen that the
/// anchor lies on, with and without panels.
QRect popoverRect(const PopoverAnchor& anchor, QSize size, const QRect& screen, const QRect& available);

}  // namespace vorn
