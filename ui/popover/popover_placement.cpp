#include "ui/popover/popover_placement.hpp"

#include <algorithm>

namespace vorn {
namespace {

constexpr int kGap = 6;     ///< Between the anchor and the popover.
constexpr int kMargin = 8;  ///< To the edges of the screen.

/// `length` from `start`, moved as little as needed to lie in [from, to); at `from` when it does not fit.
int within(int start, int length, int from, int to) {
    return std::max(from, std::min(start, to - length));
}

/// Whether the anchor belongs to a panel at the left or right rather than at the top or bottom.
bool isAtTheSide(const QRect& anchor, const QRect& screen, const QRect& available) {
    const QPoint center = anchor.center();
    if (center.y() < available.top() || center.y() > available.bottom()) {
        return false;
    }
    if (center.x() < available.left() || center.x() > available.right()) {
        return true;
    }
    // The panel does not reserve its place: the nearest edge decides.
    const int toSide = std::min(center.x() - screen.left(), screen.right() - center.x());
    return toSide < std::min(center.y() - screen.top(), screen.bottom() - center.y());
}

QPoint beside(const QRect& anchor, QSize size, const QRect& screen, const QRect& available) {
    const QPoint center = anchor.center();
    if (isAtTheSide(anchor, screen, available)) {
        const bool isLeft = center.x() < screen.center().x();
        return {isLeft ? anchor.right() + 1 + kGap : anchor.left() - kGap - size.width(),
                center.y() - size.height() / 2};
    }
    const bool isTop = center.y() < screen.center().y();
    return {center.x() - size.width() / 2, isTop ? anchor.bottom() + 1 + kGap : anchor.top() - kGap - size.height()};
}

}  // namespace

QRect popoverRect(const PopoverAnchor& anchor, QSize size, const QRect& screen, const QRect& available) {
    const QRect room = available.adjusted(kMargin, kMargin, -kMargin, -kMargin);
    const QPoint corner(room.right() + 1 - size.width(), room.top());
    const bool isInCorner = anchor.kind == PopoverAnchor::Kind::screenCorner;
    const QPoint wanted = isInCorner ? corner : beside(anchor.rect, size, screen, available);
    return {QPoint(within(wanted.x(), size.width(), room.left(), room.right() + 1),
                   within(wanted.y(), size.height(), room.top(), room.bottom() + 1)),
            size};
}

}  // namespace vorn
