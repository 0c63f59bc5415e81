#include "ui/window/settled_size.hpp"

#include <QQuickItem>
#include <cmath>

namespace vorn {
namespace {

void layOut(QQuickItem& item) {
    for (QQuickItem* const child : item.childItems()) {
        layOut(*child);
    }
    item.ensurePolished();
}

QSize wanted(const QQuickItem& view) {
    return {static_cast<int>(std::ceil(view.implicitWidth())), static_cast<int>(std::ceil(view.implicitHeight()))};
}

}  // namespace

QSize settledSize(QQuickItem& view) {
    // One change may ask for another: a width changes where texts break, and that a height.
    constexpr int kMostRounds = 4;
    QSize before;
    for (int round = 0; round < kMostRounds && before != wanted(view); ++round) {
        before = wanted(view);
        view.setSize(before);
        layOut(view);
    }
    return wanted(view);
}

}  // namespace vorn
