#include "ui/controls/icon.hpp"

#include <QLineF>
#include <QPainter>
#include <QPainterPath>
#include <initializer_list>

namespace vorn {
namespace {

void addLine(QPainterPath& path, std::initializer_list<QPointF> points) {
    const QPointF* point = points.begin();
    path.moveTo(*point);
    while (++point != points.end()) {
        path.lineTo(*point);
    }
}

void addArc(QPainterPath& path, const QRectF& box, double fromDegrees, double byDegrees) {
    path.arcMoveTo(box, fromDegrees);
    path.arcTo(box, fromDegrees, byDegrees);
}

void addDot(QPainterPath& path, QPointF center, double radius) {
    path.addEllipse(center, radius, radius);
}

/// A wheel with eight short teeth.
void addWheel(QPainterPath& path) {
    constexpr int kTeeth = 8;
    constexpr QPointF kCenter{8, 8};
    path.addEllipse(kCenter, 3.2, 3.2);
    for (int i = 0; i < kTeeth; ++i) {
        QLineF tooth = QLineF::fromPolar(6.4, i * 360.0 / kTeeth).translated(kCenter);
        path.moveTo(tooth.pointAt(0.74));
        path.lineTo(tooth.p2());
    }
}

void addBell(QPainterPath& path) {
    path.moveTo(2.8, 11.6);
    path.cubicTo(4.4, 10, 4.2, 8.4, 4.2, 6.6);
    path.cubicTo(4.2, 1.2, 11.8, 1.2, 11.8, 6.6);
    path.cubicTo(11.8, 8.4, 11.6, 10, 13.2, 11.6);
    path.closeSubpath();
    path.moveTo(6.6, 14);
    path.cubicTo(7.2, 14.8, 8.8, 14.8, 9.4, 14);
}

/// Strokes in a box of 16 by 16, one and a half wide; angles count from three o'clock anticlockwise.
QPainterPath strokes(Icon::Symbol symbol) {
    QPainterPath path;
    switch (symbol) {
        case Icon::Refresh:
            addArc(path, {2.5, 2.5, 11, 11}, 27, 303);
            addLine(path, {{13.2, 1.9}, {13.2, 5.5}, {9.6, 5.5}});
            break;
        case Icon::Ellipsis:
            addDot(path, {3, 8}, 0.6);
            addDot(path, {8, 8}, 0.6);
            addDot(path, {13, 8}, 0.6);
            break;
        case Icon::Chart:
            addLine(path, {{2, 2}, {2, 14}, {14.2, 14}});
            addLine(path, {{4.8, 10.2}, {7.6, 6.6}, {9.8, 8.8}, {13.4, 4}});
            break;
        case Icon::Sliders:
            addLine(path, {{1.8, 4.8}, {7.8, 4.8}});
            addLine(path, {{12.2, 4.8}, {14.2, 4.8}});
            addDot(path, {10, 4.8}, 2.1);
            addLine(path, {{1.8, 11.2}, {3.8, 11.2}});
            addLine(path, {{8.2, 11.2}, {14.2, 11.2}});
            addDot(path, {6, 11.2}, 2.1);
            break;
        case Icon::Power:
            addArc(path, {2.5, 3, 11, 11}, 125, 290);
            addLine(path, {{8, 1.8}, {8, 7.6}});
            break;
        case Icon::Flag:
            addLine(path, {{3.2, 14.2}, {3.2, 2.2}, {12.6, 2.2}, {10.6, 5.2}, {12.6, 8.2}, {3.2, 8.2}});
            break;
        case Icon::Warning:
            addLine(path, {{8, 2.2}, {14.4, 13.4}, {1.6, 13.4}, {8, 2.2}});
            path.closeSubpath();
            addLine(path, {{8, 6.4}, {8, 9.4}});
            addDot(path, {8, 11.4}, 0.15);
            break;
        case Icon::ChevronDown:
            addLine(path, {{4, 6}, {8, 10}, {12, 6}});
            break;
        case Icon::ChevronUp:
            addLine(path, {{4, 10}, {8, 6}, {12, 10}});
            break;
        case Icon::Cross:
            addLine(path, {{4, 4}, {12, 12}});
            addLine(path, {{12, 4}, {4, 12}});
            break;
        case Icon::Plus:
            addLine(path, {{8, 3}, {8, 13}});
            addLine(path, {{3, 8}, {13, 8}});
            break;
        case Icon::Minus:
            addLine(path, {{3, 8}, {13, 8}});
            break;
        case Icon::General:
            addWheel(path);
            break;
        case Icon::MenuBar:
            path.addRoundedRect(QRectF(2, 3, 12, 10), 2, 2);
            path.moveTo(2, 6.4);
            path.lineTo(14, 6.4);
            break;
        case Icon::Bell:
            addBell(path);
            break;
        case Icon::Terminal:
            path.addRoundedRect(QRectF(1.8, 2.6, 12.4, 10.8), 2, 2);
            path.moveTo(4.8, 6);
            path.lineTo(7, 8);
            path.lineTo(4.8, 10);
            path.moveTo(8.6, 10.2);
            path.lineTo(11.2, 10.2);
            break;
        case Icon::Tick:
            path.moveTo(3.4, 8.4);
            path.lineTo(6.6, 11.6);
            path.lineTo(12.6, 4.8);
            break;
        case Icon::Grip:
            for (const double y : {4.0, 8.0, 12.0}) {
                path.addEllipse(QPointF(6, y), 0.15, 0.15);
                path.addEllipse(QPointF(10, y), 0.15, 0.15);
            }
            break;
    }
    return path;
}

}  // namespace

void Icon::paint(QPainter* painter) {
    constexpr double kBox = 16;
    constexpr double kLine = 1.5;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->scale(width() / kBox, height() / kBox);
    painter->strokePath(strokes(m_symbol), QPen(color(), kLine, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

}  // namespace vorn
