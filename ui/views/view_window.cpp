#include "ui/views/view_window.hpp"

#include <QEvent>
#include <QQuickItem>
#include <utility>

namespace vorn {

ViewWindow::ViewWindow(ViewEngine& engine, WindowPlaceStore place, QObject* parent)
    : QObject(parent), m_engine(engine), m_place(std::move(place)) {
    connect(&engine, &ViewEngine::aboutToUnload, this, &ViewWindow::discardViews);
}

ViewWindow::~ViewWindow() = default;

void ViewWindow::open() {
    const bool wasOpen = isOpen();
    if (!wasOpen && !createView()) {
        return;
    }
    m_view->setWindowStates(m_view->windowStates() & ~Qt::WindowMinimized);
    m_view->setVisible(true);
    m_view->raise();
    m_view->requestActivate();
    if (!wasOpen) {
        emit opened();
    }
}

void ViewWindow::close() {
    if (!m_view) {
        return;
    }
    m_view->removeEventFilter(this);
    leave(*m_view);
    if (m_place.save) {
        m_place.save(placeOf(*m_view, lastPlace()));
    }
    m_view->hide();
    // It may be what called.
    m_closing.push_back(std::move(m_view));
    QMetaObject::invokeMethod(
        this, [this] { m_closing.clear(); }, Qt::QueuedConnection);
    emit closed();
}

bool ViewWindow::createView() {
    m_view = makeView(m_engine.hold());
    const QQuickItem* const root = m_view->rootObject();
    if (!root) {
        // Parts of Qt are not installed; the view has told which.
        m_view.reset();
        return false;
    }
    const Sizes sizes = sizesFor(*root);
    m_view->setMinimumSize(sizes.least);
    restorePlace(*m_view, lastPlace(), sizes.usual);
    m_view->installEventFilter(this);
    connect(root, SIGNAL(closeRequested()), this, SLOT(close()));
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
