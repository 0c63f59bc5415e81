#pragma once

#include <QRect>
#include <QSize>
#include <functional>

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

struct WindowSizes {
    QSize usual;  ///< Where no place is known.
    QSize least;
};

/// Puts a window that is not shown yet where it was, as far as that is on a screen; else it gets its usual size and the
/// window manager's place. It is never larger than its screen.
void restorePlace(QWindow& window, const WindowPlaceStore& store, const WindowSizes& sizes);

/// Of a shown window. One that is maximised keeps the rectangle it had before.
void savePlace(const QWindow& window, const WindowPlaceStore& store);

}  // namespace vorn
