#include "ui/window/view_window.hpp"

#include <QEvent>
#include <QQuickItem>
#include <utility>

namespace vorn {

/// Holds the engine as long as it exists.
class ViewWindow::View : public QQuickView {
public:
    View(ViewEngine::Hold hold, Shown shown)
        : QQuickView(hold.get(), nullptr), m_hold(std::move(hold)), m_content(std::move(shown.content)) {
        setTitle(shown.title);
        setResizeMode(SizeRootObjectToView);
        setInitialProperties(shown.properties);
        setSource(QUrl(shown.url));
    }
    ~View() override {
        // What is shown goes before what it shows.
        setSource({});
    }

private:
    ViewEngine::Hold m_hold;
    std::shared_ptr<void> m_content;
};

ViewWindow::ViewWindow(ViewEngine& engine, QObject* parent) : QObject(parent), m_engine(engine) {
    connect(&engine, &ViewEngine::aboutToUnload, this, &ViewWindow::discardViews);
}

ViewWindow::~ViewWindow() = default;

QQuickView* ViewWindow::view() const {
    return m_view.get();
}

void ViewWindow::setViewProperty(const char* name, const QVariant& value) {
    if (m_view) {
        m_view->rootObject()->setProperty(name, value);
    }
}

void ViewWindow::open() {
    const bool wasOpen = isOpen();
    if (!wasOpen && !createView()) {
        return;
    }
    present(*m_view);
    if (!wasOpen) {
        emit opened();
    }
}

void ViewWindow::present(QQuickView& view) {
    view.setWindowStates(view.windowStates() & ~Qt::WindowMinimized);
    view.setVisible(true);
    view.raise();
    view.requestActivate();
}

void ViewWindow::close() {
    if (!m_view) {
        return;
    }
    m_view->removeEventFilter(this);
    leave(*m_view);
    m_view->hide();
    // It may be what called.
    m_closing.push_back(std::move(m_view));
    QMetaObject::invokeMethod(
        this, [this] { m_closing.clear(); }, Qt::QueuedConnection);
    emit closed();
}

bool ViewWindow::createView() {
    m_view = std::make_unique<View>(m_engine.hold(), shown());
    if (!m_view->rootObject()) {
        // Parts of Qt are not installed; the view has told which.
        m_view.reset();
        return false;
    }
    m_view->installEventFilter(this);
    prepare(*m_view);
    return true;
}

void ViewWindow::discardViews() {
    m_view.reset();
    m_closing.clear();
}

bool ViewWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_view.get() && event->type() == QEvent::Close) {
        close();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vorn
