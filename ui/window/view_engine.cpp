#include "ui/window/view_engine.hpp"

#include <QQmlEngine>
#include <QQuickWindow>
#include <utility>

#include "platform/memory.hpp"
#include "ui/controls/theme.hpp"

namespace vorn {

ViewEngine::ViewEngine(DesktopAppearance& appearance, std::chrono::milliseconds linger, QObject* parent)
    : QObject(parent), m_appearance(appearance) {
    m_unloadTimer.setSingleShot(true);
    m_unloadTimer.setInterval(linger);
    connect(&m_unloadTimer, &QTimer::timeout, this, &ViewEngine::unload);
}

ViewEngine::~ViewEngine() {
    unload();
}

ViewEngine::Hold ViewEngine::hold() {
    m_unloadTimer.stop();
    if (auto held = m_hold.lock()) {
        return held;
    }
    if (!m_engine) {
        m_engine = std::make_unique<QQmlEngine>();
        m_engine->addImportPath("qrc:/qt/qml");
        Theme::setAppearance(*m_engine, m_appearance);
    }
    Hold held(m_engine.get(), [this](QQmlEngine*) { m_unloadTimer.start(); });
    m_hold = held;
    return held;
}

void ViewEngine::unload() {
    m_unloadTimer.stop();
    if (!m_engine) {
        return;
    }
    emit aboutToUnload();
    m_engine.reset();
    releaseUnusedMemory();
}

void ViewEngine::useSoftwareRendering() {
    // Vorn's windows are small and mostly still. Without a graphics driver in the process they open faster and take a
    // fraction of the memory, and look the same everywhere.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

}  // namespace vorn
