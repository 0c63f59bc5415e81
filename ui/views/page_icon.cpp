#include "ui/views/page_icon.hpp"

#include <QLineF>
#include <QPainter>
#include <QPainterPath>

namespace vorn {
namespace {

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

/// Strokes in a box of 16 by 16.
QPainterPath strokes(PageIcon::Symbol symbol) {
    QPainterPath path;
    switch (symbol) {
        case PageIcon::General:
            addWheel(path);
            break;
        case PageIcon::MenuBar:
            path.addRoundedRect(QRectF(2, 3, 12, 10), 2, 2);
            path.moveTo(2, 6.4);
            path.lineTo(14, 6.4);
            break;
        case PageIcon::Bell:
            addBell(path);
            break;
        case PageIcon::Terminal:
            path.addRoundedRect(QRectF(1.8, 2.6, 12.4, 10.8), 2, 2);
            path.moveTo(4.8, 6);
            path.lineTo(7, 8);
            path.lineTo(4.8, 10);
            path.moveTo(8.6, 10.2);
            path.lineTo(11.2, 10.2);
            break;
        case PageIcon::Tick:
            path.moveTo(3.4, 8.4);
            path.lineTo(6.6, 11.6);
            path.lineTo(12.6, 4.8);
            break;
        case PageIcon::Grip:
            for (const double y : {4.0, 8.0, 12.0}) {
                path.addEllipse(QPointF(6, y), 0.15, 0.15);
                path.addEllipse(QPointF(10, y), 0.15, 0.15);
            }
            break;
    }
    return path;
}

}  // namespace

void PageIcon::setSymbol(Symbol symbol) {
    if (change(m_symbol, symbol)) {
        emit symbolChanged();
    }
}

void PageIcon::paint(QPainter* painter) {
    constexpr double kBox = 16;
    constexpr double kLine = 1.5;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->scale(width() / kBox, height() / kBox);
    painter->strokePath(strokes(m_symbol), QPen(color(), kLine, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

}  // namespace vorn
