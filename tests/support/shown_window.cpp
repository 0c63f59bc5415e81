#include "tests/support/shown_window.hpp"

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickWindow>

namespace vorn::test {

QQuickWindow* shownWindow() {
    for (QWindow* const each : QGuiApplication::topLevelWindows()) {
        if (auto* const window = qobject_cast<QQuickWindow*>(each); window && window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

std::string focusedName() {
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(QGuiApplication::focusObject());
    return interface ? interface->text(QAccessible::Name).toStdString() : "";
}

}  // namespace vorn::test
