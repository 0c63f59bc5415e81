#include <QApplication>
#include <QDir>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/desktop_appearance.hpp"
#include "tests/support/view_states.hpp"
#include "ui/views/dashboard_content.hpp"
#include "ui/views/dashboard_window.hpp"
#include "ui/views/thinned_points.hpp"
#include "ui/views/time_axis.hpp"
#include "ui/views/view_picture.hpp"

namespace vorn {
namespace {

using test::ViewState;

/// Everything that Qt or QML complained about while it lives.
class Warnings {
public:
    Warnings() : m_previous(qInstallMessageHandler(&Warnings::take)) { s_texts.clear(); }
    ~Warnings() { qInstallMessageHandler(m_previous); }
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;
    [[nodiscard]] static const std::vector<std::string>& texts() { return s_texts; }

private:
    static void take(QtMsgType type, const QMessageLogContext&, const QString& text) {
        const bool isOfThePlatform = text.startsWith("This plugin does not support");
        if (type != QtDebugMsg && type != QtInfoMsg && !isOfThePlatform) {
            s_texts.push_back(text.toStdString());
        }
    }
    static inline std::vector<std::string> s_texts;
    QtMessageHandler m_previous;
};

struct PictureLook {
    DesktopAppearance::Look look;
    double pixelRatio = 1;
    int width = 1000;
};

QImage picture(UsageModel& model, const PictureLook& with) {
    DesktopAppearance appearance;
    appearance.setLook(with.look);
    ViewEngine engine(appearance);
    const auto hold = engine.hold();
    DashboardContent content(model);
    QVariantMap properties = content.properties();
    properties.insert("hasSettings", true);
    properties.insert("preferredWidth", with.width);
    return pictureOf(
        *hold,
        {.view = QUrl("qrc:/qt/qml/Vorn/DashboardView.qml"), .properties = properties, .pixelRatio = with.pixelRatio});
}

/// For people to look at, where the environment names a directory.
void keepPicture(const QImage& image, const std::string& name) {
    if (const char* const directory = std::getenv("VORN_VIEW_PICTURES")) {
        image.save(QDir(directory).filePath(QString::fromStdString(name + ".png")));
    }
}

TEST(DashboardView, ShowsEveryStateWithoutAWarning) {
    for (const auto& [name, enter] : test::allViewStates()) {
        SCOPED_TRACE(name);
        ViewState state;
        enter(state);
        for (const PictureLook& with : {PictureLook{.look = {.reducedMotion = true}},
                                        {.look = {.isDark = true}, .width = 720},
                                        {.look = {.highContrast = true}, .width = 560},
                                        {.look = {.reducedMotion = true}, .width = 1900}}) {
            const Warnings warnings;
            const QImage image = picture(*state.model, with);
            EXPECT_THAT(Warnings::texts(), testing::IsEmpty());
            EXPECT_EQ(image.width(), with.width);
            EXPECT_GT(image.height(), 200);
            keepPicture(image, name + "-" + std::to_string(with.width));
        }
    }
}

}  // namespace
}  // namespace vorn

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    vorn::ViewEngine::useSoftwareRendering();
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
