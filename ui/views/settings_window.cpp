#include "ui/views/settings_window.hpp"

#include <QEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <utility>

#include "app/model/integrations.hpp"
#include "ui/views/settings_pages.hpp"

namespace vorn {
namespace {

constexpr const char* kViewUrl = "qrc:/qt/qml/Vorn/SettingsView.qml";
/// Of the size it opens with; below it, rows would not fit any more.
constexpr double kLeastShare = 0.75;

}  // namespace

/// The window with what it shows; holds the engine as long as it exists.
class SettingsWindow::View : public QQuickView {
public:
    View(ViewEngine::Hold hold, const SettingsWindow::Deps& deps, ClaudeFinder& finder, Page page)
        : QQuickView(hold.get(), nullptr), m_hold(std::move(hold)), m_pages(deps, finder) {
        setTitle("Settings");
        setFlags(Qt::Window);
        setResizeMode(SizeRootObjectToView);
        setInitialProperties(m_pages.properties(page));
        setSource(QUrl(kViewUrl));
    }
    ~View() override {
        // What is shown goes before what it shows.
        setSource({});
    }

private:
    ViewEngine::Hold m_hold;
    SettingsPages m_pages;
};

SettingsWindow::SettingsWindow(const Deps& deps, ViewEngine& engine, QObject* parent)
    : QObject(parent), m_deps(deps), m_engine(engine), m_finder(std::make_unique<ClaudeFinder>()) {
    connect(&engine, &ViewEngine::aboutToUnload, this, [this] {
        m_view.reset();
        m_closing.clear();
    });
}

SettingsWindow::~SettingsWindow() = default;

void SettingsWindow::open() {
    if (!m_view) {
        m_deps.integrations.refresh();
        if (!createView()) {
            return;
        }
        m_view->setVisible(true);
        emit opened();
    }
    m_view->setWindowStates(m_view->windowStates() & ~Qt::WindowMinimized);
    m_view->raise();
    m_view->requestActivate();
}

void SettingsWindow::open(Page page) {
    m_page = page;
    if (m_view) {
        m_view->rootObject()->setProperty("page", static_cast<int>(page));
    }
    open();
}

void SettingsWindow::close() {
    if (!m_view) {
        return;
    }
    m_view->removeEventFilter(this);
    m_page = static_cast<Page>(m_view->rootObject()->property("page").toInt());
    rememberPlace();
    m_view->hide();
    // It may be what called.
    m_closing.push_back(std::move(m_view));
    QMetaObject::invokeMethod(
        this, [this] { m_closing.clear(); }, Qt::QueuedConnection);
    emit closed();
}

bool SettingsWindow::isOpen() const {
    return m_view != nullptr;
}

bool SettingsWindow::createView() {
    m_view = std::make_unique<View>(m_engine.hold(), m_deps, *m_finder, m_page);
    const QQuickItem* const root = m_view->rootObject();
    if (!root) {
        // Parts of Qt are not installed; the view has told which.
        m_view.reset();
        return false;
    }
    const QSize size(qRound(root->implicitWidth()), qRound(root->implicitHeight()));
    m_view->setMinimumSize(size * kLeastShare);
    restorePlace(*m_view, m_deps.place.load ? m_deps.place.load() : WindowPlace{}, size);
    m_view->installEventFilter(this);
    // Who comes back to the window may have changed things elsewhere.
    connect(m_view.get(), &QWindow::activeChanged, this, [this] {
        if (m_view && m_view->isActive()) {
            m_deps.integrations.refresh();
        }
    });
    connect(root, SIGNAL(closeRequested()), this, SLOT(close()));
    connect(root, SIGNAL(chooseClaudeRequested()), this, SIGNAL(chooseClaudeRequested()));
    return true;
}

void SettingsWindow::rememberPlace() const {
    if (m_deps.place.save) {
        m_deps.place.save(placeOf(*m_view, m_deps.place.load ? m_deps.place.load() : WindowPlace{}));
    }
}

bool SettingsWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_view.get() && event->type() == QEvent::Close) {
        close();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vorn
