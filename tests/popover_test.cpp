#include <QGuiApplication>
#include <QImage>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/snapshot.hpp"
#include "platform/desktop_appearance.hpp"
#include "tests/support/qt_warnings.hpp"
#include "tests/support/shown_window.hpp"
#include "tests/support/view_looks.hpp"
#include "tests/support/view_states.hpp"
#include "ui/popover/popover_presenter.hpp"
#include "ui/popover/popover_window.hpp"
#include "ui/window/app_requests.hpp"
#include "ui/window/view_engine.hpp"
#include "ui/window/view_picture.hpp"

namespace vorn {
namespace {

using test::ViewState;
using test::Warnings;

struct PictureLook {
    DesktopAppearance::Look look;
    double pixelRatio = 1;
    bool inManyWords = false;
};

/// Texts as long as they become in other languages.
void lengthen(WindowListModel& windows, const Answer& answer) {
    auto rows = windowRows(answer);
    for (auto& [card, isFoldable] : rows) {
        card.title += " über alle Modelle";
        card.statusText = "Komfortabel";
        for (QString* const text : {&card.verdict, &card.reset, &card.shortReset, &card.pace}) {
            *text += " " + text->left(text->size() / 2);
        }
    }
    windows.setRows(std::move(rows));
}

QImage picture(UsageModel& model, const PictureLook& with) {
    DesktopAppearance appearance;
    appearance.setLook(with.look);
    ViewEngine engine(appearance);
    const auto hold = engine.hold();
    PopoverPresenter presenter(model);
    if (with.inManyWords) {
        lengthen(*presenter.windows(), model.answer());
    }
    AppRequests requests;
    return pictureOf(*hold, {.view = QUrl("qrc:/qt/qml/Vorn/Popover/PopoverView.qml"),
                             .properties = {{"presenter", QVariant::fromValue(&presenter)},
                                            {"requests", QVariant::fromValue(&requests)}},
                             .pixelRatio = with.pixelRatio});
}

TEST(PopoverView, ShowsEveryStateWithoutAWarning) {
    test::forEachViewState([](const std::string& name, UsageModel& model) {
        for (const DesktopAppearance::Look look :
             {DesktopAppearance::Look{}, {.isDark = true}, {.highContrast = true, .reducedMotion = true}}) {
            const QImage image = picture(model, {.look = look, .pixelRatio = 2});
            EXPECT_GT(image.height(), 300);
            test::keepPicture(image, name + (look.highContrast ? "-contrast" : look.isDark ? "-dark" : "-light"));
        }
    });
}

TEST(PopoverView, MirrorsGrowsAndTellsTheTimeAsTheUserDoes) {
    const test::ScopedEnvironment american("LC_ALL", "en_US.UTF-8");
    const struct {
        const char* name;
        Qt::LayoutDirection direction;
        int points;
        double pixelRatio;
        bool inManyWords = false;
    } cases[] = {{"right-to-left", Qt::RightToLeft, 10, 2},
                 {"many-words", Qt::LeftToRight, 10, 2, true},
                 {"small-type", Qt::LeftToRight, 9, 1},
                 {"large-type", Qt::LeftToRight, 16, 1.5},
                 {"plain-screen", Qt::LeftToRight, 10, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const test::ScopedType type(c.direction, c.points);
        test::forEachViewState([&c](const std::string& name, UsageModel& model) {
            test::keepPicture(picture(model, {.pixelRatio = c.pixelRatio, .inManyWords = c.inManyWords}),
                              name + "-" + c.name);
        });
    }
}

/// The popover in a window of its own, with a model that may be put into any state before.
class PopoverWindowTest : public testing::Test {
protected:
    void SetUp() override { m_state.model->startDemo(test::demoWithWindows(6, m_state.now)); }
    void TearDown() override { EXPECT_THAT(Warnings::texts(), testing::IsEmpty()); }

    QQuickWindow& open() {
        m_popover.open(PopoverAnchor::inCorner({0, 0}));
        EXPECT_TRUE(QTest::qWaitForWindowActive(test::shownWindow()));
        return *test::shownWindow();
    }
    static std::string focused() {
        const std::string name = test::focusedName();
        return name.substr(0, name.find(','));
    }

    Warnings m_warnings;
    ViewState m_state;
    DesktopAppearance m_appearance;
    ViewEngine m_engine{m_appearance, std::chrono::milliseconds(0)};
    AppRequests m_requests;
    PopoverWindow m_popover{*m_state.model, m_requests, m_engine};
};

TEST_F(PopoverWindowTest, IsReachedByTheKeyboardInReadingOrder) {
    QQuickWindow& window = open();
    std::vector<std::string> order;
    for (int i = 0; i < 11; ++i) {
        QTest::keyClick(&window, Qt::Key_Tab);
        order.push_back(focused());
    }
    EXPECT_THAT(order, testing::ElementsAre(testing::HasSubstr("Limit reached"), "Session", "Week", "Week · Haiku",
                                            "Week · Research preview", "Week · Sonnet", testing::HasSubstr("million"),
                                            "Refresh", "Dashboard", "Settings", "Quit Vorn"));
    const QSignalSpy quit(&m_requests, &AppRequests::quit);
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_EQ(quit.size(), 1);
    QTest::keyClick(&window, Qt::Key_Backtab);
    const QSignalSpy settings(&m_requests, &AppRequests::openSettings);
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_EQ(settings.size(), 1);

    const QSignalSpy closed(&m_popover, &PopoverWindow::closed);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_EQ(closed.size(), 1);
    EXPECT_FALSE(m_popover.isOpen());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_engine.isLoaded(); }));
}

TEST_F(PopoverWindowTest, OpensACompactCardAndGrowsWithIt) {
    m_state.model->startDemo(test::demoWithWindows(5, m_state.now));
    QQuickWindow& window = open();
    const int before = window.height();
    QTest::keyClick(&window, Qt::Key_Tab);
    QTest::keyClick(&window, Qt::Key_Tab);
    ASSERT_EQ(focused(), "Session");
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.height() > before; }));
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.height() == before; }));
    const int most = qRound(window.screen()->availableGeometry().height() * 0.7);
    EXPECT_LE(window.height(), most);
}

TEST_F(PopoverWindowTest, ClosesOnAClickOutsideAndNotAgainOpensByIt) {
    QQuickWindow& window = open();
    QTest::mousePress(&window, Qt::LeftButton, {}, QPoint(-20, 5));
    EXPECT_FALSE(m_popover.isOpen());
    m_popover.toggle(PopoverAnchor::inCorner({0, 0}));
    EXPECT_FALSE(m_popover.isOpen()) << "the click that closed it came a second time, as one on the tray";
    m_popover.toggle(PopoverAnchor::inCorner({0, 0}));
    EXPECT_TRUE(m_popover.isOpen());
    m_popover.toggle(PopoverAnchor::inCorner({0, 0}));
    EXPECT_FALSE(m_popover.isOpen());
}

TEST_F(PopoverWindowTest, ClosesWhenAnotherWindowTakesTheFocus) {
    open();
    QWindow other;
    other.show();
    other.requestActivate();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_popover.isOpen(); }));
}

TEST_F(PopoverWindowTest, FollowsTheModelWhileItIsOpen) {
    QQuickWindow& window = open();
    m_state.model->startDemo(demo::makeDemo(demo::Scenario::comfortable, m_state.now));
    QTest::keyClick(&window, Qt::Key_Tab);
    EXPECT_THAT(focused(), testing::Not(testing::HasSubstr("Limit reached")));
    m_appearance.setLook({.isDark = true, .reducedMotion = true});
    m_popover.open(PopoverAnchor::atCursor({0, 0}));  // only moves it
    EXPECT_TRUE(m_popover.isOpen());
}

TEST(Snapshot, WritesEveryViewInBothLooksAndDensities) {
    const test::TemporaryDirectory directory;
    ViewState state;
    state.model->startDemo(demo::makeDemo(demo::Scenario::watch, state.now));
    ASSERT_EQ(renderSnapshots(
                  {.model = *state.model, .preferences = state.preferences, .directory = directory / "new/pictures"}),
              0);
    for (const char* look : {"light", "dark"}) {
        const std::string name = std::string("new/pictures/popover-") + look;
        const QImage plain(QString::fromStdString(directory / (name + ".png")));
        const QImage dense(QString::fromStdString(directory / (name + "@2x.png")));
        EXPECT_GT(plain.width(), 250);
        EXPECT_EQ(dense.size(), plain.size() * 2);
        EXPECT_NE(dense, plain.scaled(dense.size()));
        EXPECT_EQ(plain.pixelColor(0, 0).alpha(), 0) << "outside the round corner";
        const QColor middle = plain.pixelColor(plain.width() / 2, plain.height() - 3);
        EXPECT_EQ(middle.lightnessF() < 0.5, std::string(look) == "dark");
    }
    directory.write("file", "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(
        renderSnapshots({.model = *state.model, .preferences = state.preferences, .directory = directory / "file"}), 1);
    EXPECT_EQ(renderSnapshots({.model = *state.model, .preferences = state.preferences, .directory = "/proc/pictures"}),
              1);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("/proc/pictures"));
}

}  // namespace
}  // namespace vorn
