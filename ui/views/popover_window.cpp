#include "ui/views/popover_window.hpp"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QScreen>

#include "app/model/usage_model.hpp"
#include "platform/translucency.hpp"
#include "ui/views/freshness_presenter.hpp"
#include "ui/views/settled_size.hpp"
#include "ui/views/steer_presenter.hpp"
#include "ui/views/window_list_model.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

constexpr const char* kViewUrl = "qrc:/qt/qml/Vorn/PopoverView.qml";
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

/// The window with what it shows; holds the engine as long as it exists.
class PopoverWindow::View : public QQuickView {
public:
    View(ViewEngine::Hold hold, UsageModel& model)
        : QQuickView(hold.get(), nullptr),
          m_hold(std::move(hold)),
          m_steer(model),
          m_windows(model),
          m_freshness(model) {
        setTitle("Vorn");
        setFlags(popoverFlags());
        setColor(Qt::transparent);
        setResizeMode(SizeRootObjectToView);
        setInitialProperties({{"steer", QVariant::fromValue(&m_steer)},
                              {"windows", QVariant::fromValue(&m_windows)},
                              {"freshness", QVariant::fromValue(&m_freshness)},
                              {"rounded", windowsCanBeTranslucent()}});
        setSource(QUrl(kViewUrl));
    }
    ~View() override {
        // What is shown goes before what it shows.
        setSource({});
    }

private:
    ViewEngine::Hold m_hold;
    SteerPresenter m_steer;
    WindowListModel m_windows;
    FreshnessPresenter m_freshness;
};

PopoverWindow::PopoverWindow(UsageModel& model, ViewEngine& engine, QObject* parent)
    : QObject(parent), m_model(model), m_engine(engine) {
    connect(&engine, &ViewEngine::aboutToUnload, this, [this] {
        m_view.reset();
        m_closing.clear();
    });
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow* focused) {
        if (!m_view) {
            return;
        }
        if (focused == m_view.get()) {
            m_hadFocus = true;
        } else if (m_hadFocus) {
            closeByOutsideClick();
        }
    });
}

PopoverWindow::~PopoverWindow() = default;

void PopoverWindow::open(const PopoverAnchor& anchor) {
    m_anchor = anchor;
    const bool wasOpen = isOpen();
    if (!wasOpen && !createView()) {
        return;
    }
    place();
    m_view->show();
    m_view->requestActivate();
    if (isX11()) {
        m_view->raise();
        grabMouse(kGrabAttempts);
    }
    if (!wasOpen) {
        emit opened();
    }
}

void PopoverWindow::close() {
    if (!m_view) {
        return;
    }
    m_view->removeEventFilter(this);
    if (isX11()) {
        m_view->setMouseGrabEnabled(false);
    }
    m_view->hide();
    // It may be what called.
    m_closing.push_back(std::move(m_view));
    QMetaObject::invokeMethod(
        this, [this] { m_closing.clear(); }, Qt::QueuedConnection);
    emit closed();
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

bool PopoverWindow::isOpen() const {
    return m_view != nullptr;
}

void PopoverWindow::setHasDashboard(bool has) {
    m_hasDashboard = has;
    if (m_view) {
        m_view->rootObject()->setProperty("hasDashboard", has);
    }
}

void PopoverWindow::setHasSettings(bool has) {
    m_hasSettings = has;
    if (m_view) {
        m_view->rootObject()->setProperty("hasSettings", has);
    }
}

bool PopoverWindow::createView() {
    m_hadFocus = false;
    m_view = std::make_unique<View>(m_engine.hold(), m_model);
    if (!m_view->rootObject()) {
        // Parts of Qt are not installed; the view has told which.
        m_view.reset();
        return false;
    }
    m_view->installEventFilter(this);
    setHasDashboard(m_hasDashboard);
    setHasSettings(m_hasSettings);
    const QQuickItem* const root = m_view->rootObject();
    connect(root, SIGNAL(closeRequested()), this, SLOT(close()));
    connect(root, SIGNAL(refreshRequested()), this, SIGNAL(refreshRequested()));
    connect(root, SIGNAL(dashboardRequested()), this, SIGNAL(dashboardRequested()));
    connect(root, SIGNAL(settingsRequested()), this, SIGNAL(settingsRequested()));
    connect(root, SIGNAL(chooseClaudeRequested()), this, SIGNAL(chooseClaudeRequested()));
    connect(root, SIGNAL(quitRequested()), this, SIGNAL(quitRequested()));
    // Later: placing it lays it out once more, which must not happen while it is being laid out.
    connect(root, &QQuickItem::implicitHeightChanged, this, &PopoverWindow::place, Qt::QueuedConnection);
    connect(root, &QQuickItem::implicitWidthChanged, this, &PopoverWindow::place, Qt::QueuedConnection);
    return true;
}

void PopoverWindow::place() {
    const QScreen* const screen = screenOf(m_anchor);
    if (!m_view || !screen) {
        return;
    }
    const QRect available = screen->availableGeometry();
    const int maximumHeight = qRound(available.height() * kMostOfHeight);
    m_view->rootObject()->setProperty("maximumHeight", maximumHeight);
    const QRect rect = popoverRect(m_anchor, settledSize(*m_view->rootObject()), screen->geometry(), available);
    m_view->setMinimumSize(rect.size());
    m_view->setMaximumSize(rect.size());
    m_view->setGeometry(rect);
}

void PopoverWindow::grabMouse(int attemptsLeft) {
    if (!m_view || attemptsLeft == 0 || m_view->setMouseGrabEnabled(true)) {
        return;
    }
    QTimer::singleShot(kGrabRetry, m_view.get(), [this, attemptsLeft] { grabMouse(attemptsLeft - 1); });
}

bool PopoverWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress && watched == m_view.get()) {
        const auto& press = static_cast<const QMouseEvent&>(*event);
        if (!QRect(QPoint(), m_view->size()).contains(press.position().toPoint())) {
            closeByOutsideClick();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vorn
