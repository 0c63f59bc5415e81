#include "ui/window/window_place.hpp"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>

namespace vorn {
namespace {

/// A window with less than this of its upper edge on a screen cannot be taken hold of.
constexpr QSize kGrip{80, 24};

const QScreen* screenHolding(const QRect& rect) {
    const QRect upperEdge(rect.topLeft(), QSize(rect.width(), kGrip.height()));
    const auto screens = QGuiApplication::screens();
    const auto found = std::ranges::find_if(screens, [&](const QScreen* screen) {
        const QRect seen = upperEdge.intersected(screen->availableGeometry());
        return seen.width() >= kGrip.width() && seen.height() >= kGrip.height();
    });
    return found == screens.end() ? nullptr : *found;
}

WindowPlace lastPlace(const WindowPlaceStore& store) {
    return store.load ? store.load() : WindowPlace{};
}

}  // namespace

void restorePlace(QWindow& window, const WindowPlaceStore& store, const WindowSizes& sizes) {
    window.setMinimumSize(sizes.least);
    const WindowPlace place = lastPlace(store);
    const QScreen* const screen = place.rect.isValid() ? screenHolding(place.rect) : nullptr;
    const QScreen* const within = screen ? screen : QGuiApplication::primaryScreen();
    const QSize wanted = place.rect.isValid() ? place.rect.size() : sizes.usual;
    const QSize fitting = within ? wanted.boundedTo(within->availableSize()) : wanted;
    window.resize(fitting.expandedTo(window.minimumSize()));
    if (screen) {
        window.setPosition(place.rect.topLeft());
    }
    if (place.isMaximized) {
        window.setWindowStates(Qt::WindowMaximized);
    }
}

void savePlace(const QWindow& window, const WindowPlaceStore& store) {
    if (!store.save) {
        return;
    }
    const bool isPlain = !(window.windowStates() & (Qt::WindowMaximized | Qt::WindowFullScreen | Qt::WindowMinimized));
    store.save({.rect = isPlain ? window.geometry() : lastPlace(store).rect,
                .isMaximized = window.windowStates().testFlag(Qt::WindowMaximized)});
}

}  // namespace vorn
