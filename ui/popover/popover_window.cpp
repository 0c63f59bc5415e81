#include "ui/popover/popover_window.hpp"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QQuickItem>
#include <QScreen>

#include "model/usage_model.hpp"
#include "platform/translucency.hpp"
#include "ui/popover/popover_presenter.hpp"
#include "ui/popover/qml_types.hpp"
#include "ui/window/app_requests.hpp"
#include "ui/window/settled_size.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

constexpr const char* kViewUrl = "qrc:/qt/qml/Vorn/Popover/PopoverView.qml";
/// A click outside that closed the popover may also have been one on the tray, which reports it a little later.
constexpr std::chrono::milliseconds kSameClick = 400ms;
/// Of the screen's height; beyond it the list scrolls.
constexpr double kMostOfHeight = 0.7;
/// A panel keeps the mouse to itself until its button is up.
constexpr std::chrono::milliseconds kGrabRetry = 50ms;
constexpr int kGrabAttempts = 40;

bool isX11() {
    return QGuiApplication::platformName() == "xcb";
}

/// On X11 the popover is what menus are there: nothing for the window manager, which would place it, might refuse it
/// the focus and would not tell of clicks outside it. On Wayland it is an ordinary window, placed by the compositor: a
/// true popup could only belong to another window of Vorn's, and there is none.
Qt::WindowFlags popoverFlags() {
    const Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    return isX11() ? flags | Qt::BypassWindowManagerHint : flags;
}

QScreen* screenOf(const PopoverAnchor& anchor) {
    QScreen* const screen = QGuiApplication::screenAt(anchor.rect.center());
    return screen ? screen : QGuiApplication::primaryScreen();
}

}  // namespace

PopoverWindow::PopoverWindow(const UsageModel& model, AppRequests& requests, ViewEngine& engine, QObject* parent)
    : ViewWindow(engine, parent), m_model(model), m_requests(requests) {
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow* focused) {
        if (isOpen() && focused == view()) {
            m_hadFocus = true;
        } else if (isOpen() && m_hadFocus) {
            closeByOutsideClick();
        }
    });
}

PopoverWindow::~PopoverWindow() {
    discardViews();
}

void PopoverWindow::open(const PopoverAnchor& anchor) {
    m_anchor = anchor;
    open();
}

void PopoverWindow::closeByOutsideClick() {
    m_sinceOutsideClick.start();
    close();
}

void PopoverWindow::toggle(const PopoverAnchor& anchor) {
    if (isOpen()) {
        close();
        return;
    }
    if (m_sinceOutsideClick.isValid() && !m_sinceOutsideClick.hasExpired(kSameClick.count())) {
        m_sinceOutsideClick.invalidate();
        return;
    }
    open(anchor);
}

ViewWindow::Shown PopoverWindow::shown() {
    registerPopoverTypes();
    const auto presenter = std::make_shared<PopoverPresenter>(m_model);
    return {.title = "Vorn",
            .url = kViewUrl,
            .properties = {{"presenter", QVariant::fromValue(presenter.get())},
                           {"requests", QVariant::fromValue(&m_requests)},
                           {"rounded", windowsCanBeTranslucent()}},
            .content = presenter};
}

void PopoverWindow::prepare(QQuickView& view) {
    m_hadFocus = false;
    view.setFlags(popoverFlags());
    view.setColor(Qt::transparent);
    const QQuickItem* const root = view.rootObject();
    // Later: placing it lays it out once more, which must not happen while it is being laid out.
    connect(root, &QQuickItem::implicitHeightChanged, this, &PopoverWindow::place, Qt::QueuedConnection);
    connect(root, &QQuickItem::implicitWidthChanged, this, &PopoverWindow::place, Qt::QueuedConnection);
}

void PopoverWindow::present(QQuickView& view) {
    place();
    view.show();
    view.requestActivate();
    if (isX11()) {
        view.raise();
        grabMouse(kGrabAttempts);
    }
}

void PopoverWindow::leave(QQuickView& view) {
    if (isX11()) {
        view.setMouseGrabEnabled(false);
    }
}

void PopoverWindow::place() {
    const QScreen* const screen = screenOf(m_anchor);
    if (!isOpen() || !screen) {
        return;
    }
    const QRect available = screen->availableGeometry();
    const int maximumHeight = qRound(available.height() * kMostOfHeight);
    setViewProperty("maximumHeight", maximumHeight);
    const QRect rect = popoverRect(m_anchor, settledSize(*view()->rootObject()), screen->geometry(), available);
    view()->setMinimumSize(rect.size());
    view()->setMaximumSize(rect.size());
    view()->setGeometry(rect);
}

void PopoverWindow::grabMouse(int attemptsLeft) {
    if (!isOpen() || attemptsLeft == 0 || view()->setMouseGrabEnabled(true)) {
        return;
    }
    QTimer::singleShot(kGrabRetry, view(), [this, attemptsLeft] { grabMouse(attemptsLeft - 1); });
}

bool PopoverWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress && watched == view()) {
        const auto& press = static_cast<const QMouseEvent&>(*event);
        if (!QRect(QPoint(), view()->size()).contains(press.position().toPoint())) {
            closeByOutsideClick();
            return true;
        }
    }
    return ViewWindow::eventFilter(watched, event);
}

}  // namespace vorn
