#include "ui/views/series_points.hpp"

namespace vorn {

void SeriesPoints::put(QObject* series, const QList<QPointF>& points) {
    if (!series) {
        return;
    }
    const bool wasBlocked = series->blockSignals(true);
    QMetaObject::invokeMethod(series, "clear");
    for (const QPointF& point : points) {
        QMetaObject::invokeMethod(series, "append", Q_ARG(double, point.x()), Q_ARG(double, point.y()));
    }
    series->blockSignals(wasBlocked);
    QMetaObject::invokeMethod(series, "pointsReplaced");
}

}  // namespace vorn
