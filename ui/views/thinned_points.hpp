#pragma once

#include <QList>
#include <QPointF>
#include <span>

namespace vorn {

/// A line reduced to what `columns` pixel columns between `from` and `to` can show: of every column its first, lowest,
/// highest and last point, in their order, so that no peak is lost. `points`: in order of x; what lies outside counts
/// to the outermost columns. Few points come back as they are.
QList<QPointF> thinnedPoints(std::span<const QPointF> points, double from, double to, int columns);

}  // namespace vorn
