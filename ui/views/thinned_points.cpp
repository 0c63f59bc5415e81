#include "ui/views/thinned_points.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace vorn {
namespace {

using Position = std::span<const QPointF>::iterator;

/// Up to this many a column are drawn as they are.
constexpr std::ptrdiff_t kKept = 4;

void appendColumn(Position first, Position end, QList<QPointF>& thinned) {
    if (end - first <= kKept) {
        std::copy(first, end, std::back_inserter(thinned));
        return;
    }
    const auto [lowest, highest] =
        std::minmax_element(first, end, [](const QPointF& one, const QPointF& other) { return one.y() < other.y(); });
    std::array<Position, kKept> kept{first, lowest, highest, end - 1};
    std::ranges::sort(kept);
    std::for_each(kept.begin(), std::unique(kept.begin(), kept.end()), [&](Position point) { thinned.append(*point); });
}

}  // namespace

QList<QPointF> thinnedPoints(std::span<const QPointF> points, double from, double to, int columns) {
    const int count = std::max(columns, 1);
    if (!(to > from)) {
        return {points.begin(), points.end()};
    }
    QList<QPointF> thinned;
    thinned.reserve(static_cast<qsizetype>(std::min<std::size_t>(points.size(), kKept * std::size_t(count))));
    const auto columnOf = [&](const QPointF& point) {
        return std::clamp(std::floor((point.x() - from) / (to - from) * count), 0.0, count - 1.0);
    };
    for (auto first = points.begin(); first != points.end();) {
        const double column = columnOf(*first);
        const auto end =
            std::find_if(first, points.end(), [&](const QPointF& each) { return columnOf(each) > column; });
        appendColumn(first, end, thinned);
        first = end;
    }
    return thinned;
}

}  // namespace vorn
