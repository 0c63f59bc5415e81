#include "ui/charts/series_points.hpp"

#include <QVariant>

namespace vorn {
namespace {

/// Under which the series itself keeps what it was handed.
constexpr const char* kHanded = "_vorn_points";

}  // namespace

void SeriesPoints::put(QObject* series, const QList<QPointF>& points) {
    if (!series || series->property(kHanded).value<QList<QPointF>>() == points) {
        return;
    }
    series->setProperty(kHanded, QVariant::fromValue(points));
    const bool wasBlocked = series->blockSignals(true);
    QMetaObject::invokeMethod(series, "clear");
    for (const QPointF& point : points) {
        QMetaObject::invokeMethod(series, "append", Q_ARG(double, point.x()), Q_ARG(double, point.y()));
    }
    series->blockSignals(wasBlocked);
    QMetaObject::invokeMethod(series, "pointsReplaced");
}

}  // namespace vorn
