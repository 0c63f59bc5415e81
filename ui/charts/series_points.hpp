#pragma once

#include <QList>
#include <QObject>
#include <QPointF>

#include <QtQml/qqmlregistration.h>

namespace vorn {

/// Hands whole lines to a chart, which QML itself can only do point by point, each time drawing everything anew. A line
/// that is there already costs nothing.
class SeriesPoints : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    /// `series`: a line of Qt Charts. It is known by name only: linked in, the
    /// charts would be loaded with the process rather than with the first chart.
    Q_INVOKABLE static void put(QObject* series, const QList<QPointF>& points);
    /// A straight line.
    Q_INVOKABLE static void join(QObject* series, const QPointF& from, const QPointF& to) { put(series, {from, to}); }
    Q_INVOKABLE static void clear(QObject* series) { put(series, {}); }
};

}  // namespace vorn
