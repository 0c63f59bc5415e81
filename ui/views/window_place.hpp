#pragma once

#include <QRect>
#include <functional>

class QSize;
class QWindow;

namespace vorn {

/// Where a window stands when it is neither maximised nor full screen, and whether it is maximised.
struct WindowPlace {
    QRect rect;  ///< Without the frame, in device-independent pixels of the whole desktop; null when not known.
    bool isMaximized = false;
    bool operator==(const WindowPlace&) const = default;
};

/// How a window comes by its last place and hands its present one over; either may be empty.
struct WindowPlaceStore {
    std::function<WindowPlace()> load;
    std::function<void(const WindowPlace&)> save;
};

/// Puts a window that is not shown yet where it was, as far as that is on a screen; else it gets `size` and the window
/// manager's place. It is never larger than its screen.
void restorePlace(QWindow& window, const WindowPlace& place, const QSize& size);

/// Of a shown window. `previous` gives the rectangle of one that is maximised.
WindowPlace placeOf(const QWindow& window, const WindowPlace& previous);

}  // namespace vorn
