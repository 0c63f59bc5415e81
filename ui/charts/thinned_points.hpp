#pragma once

#include <QList>
#include <QPointF>
#include <QSizeF>
#include <span>

namespace vorn {

/// Which part of the plane a plot shows, and how large. x from `from` to `to`, y from 0 to `top`.
struct PlotFrame {
    double from = 0;
    double to = 1;
    double top = 100;
    QSizeF pixels;
};

/// A line reduced to what the plot can show of it. No point of it, so no peak either, comes to lie further than half a
/// pixel from where it was, and all lie on a grid of quarter pixels: a line that looks the same is the same. `points`:
/// in order of x; none come back of a plot without an extent.
QList<QPointF> thinnedPoints(std::span<const QPointF> points, const PlotFrame& plot);

}  // namespace vorn
