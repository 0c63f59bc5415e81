#include <QApplication>
#include <QFont>

#include <gmock/gmock.h>

#include "ui/dashboard/qml_types.hpp"
#include "ui/popover/qml_types.hpp"
#include "ui/settings/qml_types.hpp"
#include "ui/window/view_engine.hpp"

/// What all tests of views run in: no screen, and one clock and language wherever that is.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("TZ", "UTC");
    qputenv("LC_ALL", "C");
    testing::InitGoogleMock(&argc, argv);
    // Charts need one with widgets.
    const QApplication application(argc, argv);
    if (const QString font = qEnvironmentVariable("VORN_VIEW_FONT"); !font.isEmpty()) {
        QGuiApplication::setFont(QFont(font, 10));
    }
    vorn::ViewEngine::useSoftwareRendering();
    vorn::registerPopoverTypes();
    vorn::registerDashboardTypes();
    vorn::registerSettingsTypes();
    return RUN_ALL_TESTS();
}
