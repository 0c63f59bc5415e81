#include "ui/charts/thinned_points.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace vorn {
namespace {

using Pixels = std::vector<QPointF>;
using Position = Pixels::const_iterator;

/// A bend of less than this many pixels is not seen.
constexpr double kFlat = 0.25;
constexpr double kGrid = 4;  // parts of a pixel

double snapped(double pixel) {
    return std::round(pixel * kGrid) / kGrid;
}

/// Of every column of pixels its first, lowest, highest and last point, in
/// their order. One at a time, so that what follows has few to look at.
Pixels columnsOf(const Pixels& line) {
    Pixels kept;
    for (auto first = line.begin(); first != line.end();) {
        const double column = std::floor(first->x());
        const auto end =
            std::find_if(first, line.end(), [&](const QPointF& each) { return std::floor(each.x()) != column; });
        const auto [lowest, highest] = std::minmax_element(
            first, end, [](const QPointF& one, const QPointF& other) { return one.y() < other.y(); });
        std::array<Position, 4> extremes{first, lowest, highest, end - 1};
        std::ranges::sort(extremes);
        std::for_each(extremes.begin(), std::unique(extremes.begin(), extremes.end()),
                      [&](Position point) { kept.push_back(*point); });
        first = end;
    }
    return kept;
}

/// How far a point lies from the straight line between two others.
double bend(const QPointF& from, const QPointF& to, const QPointF& point) {
    const QPointF along = to - from;
    const QPointF there = point - from;
    const double length = std::hypot(along.x(), along.y());
    return length > 0 ? std::abs(along.x() * there.y() - along.y() * there.x()) / length
                      : std::hypot(there.x(), there.y());
}

/// Leaves out what lies on a straight line between what is kept (Ramer, Douglas and Peucker).
Pixels straightened(const Pixels& line) {
    if (line.size() < 3) {
        return line;
    }
    std::vector<bool> isKept(line.size(), false);
    isKept.front() = isKept.back() = true;
    std::vector<std::pair<std::size_t, std::size_t>> open{{0, line.size() - 1}};
    while (!open.empty()) {
        const auto [first, last] = open.back();
        open.pop_back();
        std::size_t furthest = first;
        double most = kFlat;
        for (std::size_t i = first + 1; i < last; ++i) {
            if (const double distance = bend(line[first], line[last], line[i]); distance > most) {
                most = distance;
                furthest = i;
            }
        }
        if (furthest != first) {
            isKept[furthest] = true;
            open.emplace_back(first, furthest);
            open.emplace_back(furthest, last);
        }
    }
    Pixels kept;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (isKept[i]) {
            kept.push_back(line[i]);
        }
    }
    return kept;
}

}  // namespace

QList<QPointF> thinnedPoints(std::span<const QPointF> points, const PlotFrame& plot) {
    const double xScale = plot.pixels.width() / (plot.to - plot.from);
    const double yScale = plot.pixels.height() / plot.top;
    if (!(xScale > 0) || !(yScale > 0) || !std::isfinite(xScale) || !std::isfinite(yScale)) {
        return {};
    }
    Pixels pixels;
    pixels.reserve(points.size());
    for (const QPointF& point : points) {
        pixels.emplace_back((point.x() - plot.from) * xScale, point.y() * yScale);
    }
    QList<QPointF> thinned;
    for (const QPointF& pixel : straightened(columnsOf(pixels))) {
        thinned.append({plot.from + snapped(pixel.x()) / xScale, snapped(pixel.y()) / yScale});
    }
    return thinned;
}

}  // namespace vorn
