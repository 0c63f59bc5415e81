#include "ui/tray/ring_item.hpp"

#include <QPainter>
#include <algorithm>

#include "ui/tray/day_ring.hpp"

namespace vorn {

void RingItem::paint(QPainter* painter) {
    DayRing::Ring ring{.side = std::min(width(), height()), .segmented = m_segmented};
    if (m_used >= 0) {
        ring.used = m_used;
    }
    switch (m_mark) {
        case NoMark:
            break;
        case Arrow:
            ring.center = DayRing::Arrow{m_angle};
            break;
        case Stop:
            ring.center = DayRing::Stop{};
            break;
        case Dash:
            ring.center = DayRing::Dash{};
            break;
    }
    DayRing::paint(*painter, ring, color());
}

}  // namespace vorn
