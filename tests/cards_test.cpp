#include <QAccessible>
#include <QDir>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/sources/activity_summary.hpp"
#include "platform/desktop_appearance.hpp"
#include "tests/support/view_states.hpp"
#include "ui/views/activity_presenter.hpp"
#include "ui/views/breakdown_presenter.hpp"
#include "ui/views/resets_presenter.hpp"
#include "ui/views/session_week_presenter.hpp"
#include "ui/views/view_engine.hpp"

namespace vorn {
namespace {

using namespace test;

std::vector<std::string> warnings;

void takeWarning(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && type != QtInfoMsg && !text.startsWith("This plugin does not support")) {
        warnings.push_back(text.toStdString());
    }
}

/// The cards in a window, with presenters of one model.
class Cards {
public:
    explicit Cards(UsageModel& model, const DesktopAppearance::Look& look = {})
        : resets(model), m_sessionWeek(model), m_activity(model), m_breakdown(model) {
        m_appearance.setLook(look);
        m_hold = m_engine.hold();
        window.setColor(look.isDark ? "#1B1D21" : "#F3F4F6");
    }

    void add(const char* file, QObject& presenter, int width, QPoint at) {
        QQmlComponent component(m_hold.get(), QUrl(QString("qrc:/qt/qml/Vorn/%1.qml").arg(file)));
        auto* const item = component.isReady() ? qobject_cast<QQuickItem*>(component.createWithInitialProperties(
                                                     {{"presenter", QVariant::fromValue(&presenter)}, {"width", width}}))
                                               : nullptr;
        ASSERT_NE(item, nullptr) << component.errorString().toStdString();
        item->setParent(window.contentItem());
        item->setParentItem(window.contentItem());
        item->setPosition(at);
        item->setHeight(item->implicitHeight());
        QObject::connect(item, &QQuickItem::implicitHeightChanged, item,
                         [item] { item->setHeight(item->implicitHeight()); });
    }
    void addAll() {
        add("SessionWeekCard", m_sessionWeek, 288, {664, 12});
        add("ResetsCard", resets, 288, {664, 230});
        add("ActivityStrip", m_activity, 640, {12, 12});
        add("BreakdownCard", m_breakdown, 640, {12, 180});
        show({964, 840});
    }
    void show(QSize size) {
        window.resize(size);
        window.show();
        window.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    void keep(const std::string& name) {
        if (const char* const directory = std::getenv("VORN_VIEW_PICTURES")) {
            window.grabWindow().save(QDir(directory).filePath(QString::fromStdString(name + ".png")));
        }
    }
    void press(Qt::Key key, int times = 1) {
        for (int i = 0; i < times; ++i) {
            QTest::keyClick(&window, key);
        }
    }
    void type(const char* text) {
        for (; *text != 0; ++text) {
            QTest::keyClick(&window, *text);
        }
    }
    /// What has the keyboard, by its name for those who listen.
    static std::string focused() {
        QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(QGuiApplication::focusObject());
        return interface ? interface->text(QAccessible::Name).toStdString() : "";
    }
    void tabTo(const std::string& name) {
        for (int i = 0; i < 30 && focused() != name; ++i) {
            press(Qt::Key_Tab);
        }
        ASSERT_EQ(focused(), name);
    }

    ResetsPresenter resets;
    QQuickWindow window;

private:
    DesktopAppearance m_appearance;
    ViewEngine m_engine{m_appearance};
    ViewEngine::Hold m_hold;
    SessionWeekPresenter m_sessionWeek;
    ActivityPresenter m_activity;
    BreakdownPresenter m_breakdown;
};

TEST(Cards, ShowEveryStateWithoutAWarning) {
    const ScopedEnvironment american("LC_ALL", "en_US.UTF-8");
    for (const auto& [name, enter] : allViewStates()) {
        SCOPED_TRACE(name);
        for (const bool isDark : {false, true}) {
            warnings.clear();
            ViewState state;
            enter(state);
            Cards cards(*state.model, {.isDark = isDark});
            QGuiApplication::setLayoutDirection(isDark && name == "watch" ? Qt::RightToLeft : Qt::LeftToRight);
            cards.addAll();
            cards.keep(name + (isDark ? "-dark" : "-light"));
            EXPECT_THAT(warnings, testing::IsEmpty());
        }
    }
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

}  // namespace
}  // namespace vorn

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", qEnvironmentVariable("VORN_TEST_PLATFORM", "offscreen").toUtf8());
    testing::InitGoogleTest(&argc, argv);
    vorn::ViewEngine::useSoftwareRendering();
    const QGuiApplication application(argc, argv);
    qInstallMessageHandler(&vorn::takeWarning);
    return RUN_ALL_TESTS();
}
