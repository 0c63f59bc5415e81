#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "platform/linux/notifier_item.hpp"
#include "platform/linux/tray_menu.hpp"
#include "platform/status_item.hpp"
#include "tests/support/fake_panel.hpp"
#include "tests/support/private_bus.hpp"

namespace vorn {
namespace {

using test::FakePanel;
using test::waitFor;

class TrayStatusItemTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        static const test::PrivateBus bus;
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        static const QApplication application(count, arguments);
    }

    static StatusContent content(std::initializer_list<int> numbers, const char* toolTip = "tip") {
        StatusContent content{.toolTip = QLatin1String(toolTip)};
        for (const int number : numbers) {
            content.images.emplace_back([number](int side) {
                QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
                image.fill(QColor(0, 0, number));
                return image;
            });
        }
        return content;
    }

    static void waitForItems(FakePanel& panel, std::size_t count) {
        waitFor([&] { return panel.items.size() >= static_cast<qsizetype>(count); });
        waitFor([&] { return panel.shown().size() == count; });
    }

    QMenu menu;
    std::unique_ptr<StatusItem> item = StatusItem::system(menu);
};

using Numbers = std::vector<int>;

TEST_F(TrayStatusItemTest, KeepsTheOrderAsPartsComeAndGo) {
    for (const bool addsToTheLeft : {false, true}) {
        SCOPED_TRACE(addsToTheLeft);
        waitFor([&] { return !item->hasHost(); });
        FakePanel panel(addsToTheLeft);
        const auto onScreen = [&] {
            Numbers numbers = panel.shown();
            if (addsToTheLeft) {
                std::reverse(numbers.begin(), numbers.end());
            }
            return numbers;
        };
        item->show(content({1, 2}));
        waitForItems(panel, 2);
        EXPECT_EQ(onScreen(), (Numbers{1, 2}));
        item->show(content({1, 3, 4, 2}));
        waitForItems(panel, 4);
        EXPECT_EQ(onScreen(), (Numbers{1, 3, 4, 2}));
        item->show(content({4}));
        waitForItems(panel, 1);
        EXPECT_EQ(onScreen(), (Numbers{4}));
        item->show(content({}));
        waitForItems(panel, 0);
    }
}

TEST_F(TrayStatusItemTest, WaitsForAPanelAndComesBackWithTheNext) {
    QSignalSpy changes(item.get(), &StatusItem::hostChanged);
    item->show(content({1, 2, 3}));
    EXPECT_FALSE(item->hasHost());
    for (int i = 0; i < 3; ++i) {
        FakePanel panel;
        waitForItems(panel, 3);
        EXPECT_EQ(panel.shown(), (Numbers{1, 2, 3}));
        EXPECT_EQ(panel.property(panel.items[1], "Id").toString(), QStringLiteral("vorn-2"));
        waitFor([&] { return item->hasHost(); });
    }
    waitFor([&] { return !item->hasHost(); });
    EXPECT_EQ(changes.count(), 6);

    // A watcher without a host: items are kept, and nobody sees them.
    FakePanel panel;
    panel.hasHost = false;
    waitForItems(panel, 3);
    emit panel.StatusNotifierHostRegistered();
    panel.shown();
    EXPECT_FALSE(item->hasHost());
    panel.hasHost = true;
    emit panel.StatusNotifierHostRegistered();
    waitFor([&] { return item->hasHost(); });
}

TEST_F(TrayStatusItemTest, TellsTheHostOnlyWhatChanged) {
    FakePanel panel;
    item->show(content({1, 2}));
    waitForItems(panel, 2);
    panel.iconChanges = 0;
    panel.toolTipChanges = 0;

    item->show(content({1, 2}));
    item->show(content({1, 5}));
    item->show(content({1, 5}, "other"));
    waitFor([&] { return panel.toolTipChanges == 2; });
    EXPECT_EQ(panel.iconChanges, 1);
    EXPECT_EQ(panel.shown(), (Numbers{1, 5}));
    const auto toolTip = qdbus_cast<TrayToolTip>(panel.property(panel.items[0], "ToolTip"));
    EXPECT_EQ(toolTip.title, QStringLiteral("other"));
    for (const TrayPixmap& pixmap : qdbus_cast<TrayPixmaps>(panel.property(panel.items[1], "IconPixmap"))) {
        EXPECT_EQ(pixmap.bytes.size(), 4 * pixmap.width * pixmap.height);
        EXPECT_EQ(pixmap.bytes.first(4), QByteArray("\xff\0\0\x05", 4)) << "alpha, red, green, blue";
    }
}

TEST_F(TrayStatusItemTest, PassesClicksOn) {
    QSignalSpy activated(item.get(), &StatusItem::activated);
    FakePanel panel;
    item->show(content({1, 2}));
    waitForItems(panel, 2);
    panel.call(panel.items[1], "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate", {3, 4});
    EXPECT_EQ(activated.count(), 1);
    for (const char* const nothing : {"SecondaryActivate", "ContextMenu"}) {
        panel.call(panel.items[0], "/StatusNotifierItem", "org.kde.StatusNotifierItem", nothing, {3, 4});
    }
    EXPECT_EQ(activated.count(), 1);
}

TEST_F(TrayStatusItemTest, LetsTheHostDrawTheMenu) {
    QAction* const refresh = menu.addAction(QStringLiteral("&Refresh a_b && c"));
    menu.addSeparator();
    QAction* const quit = menu.addAction(QStringLiteral("&Quit"));
    quit->setEnabled(false);
    QSignalSpy triggered(refresh, &QAction::triggered);
    FakePanel panel;
    item->show(content({1}));
    waitForItems(panel, 1);

    const QDBusMessage layout =
        panel.call(panel.items[0], "/MenuBar", "com.canonical.dbusmenu", "GetLayout", {0, -1, QStringList()});
    std::vector<TrayMenuNode> entries;
    for (const QDBusVariant& child : qdbus_cast<TrayMenuNode>(layout.arguments().value(1)).children) {
        entries.push_back(qdbus_cast<TrayMenuNode>(child.variant()));
    }
    const auto click = [&](int id) {
        panel.call(panel.items[0], "/MenuBar", "com.canonical.dbusmenu", "Event",
                   {id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0U});
    };
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].properties.value(QStringLiteral("label")), QStringLiteral("_Refresh a__b & c"));
    EXPECT_EQ(entries[1].properties.value(QStringLiteral("type")), QStringLiteral("separator"));
    EXPECT_EQ(entries[2].properties.value(QStringLiteral("enabled")), false);
    click(entries[0].id);
    waitFor([&] { return triggered.count() == 1; });
    for (const int nothing : {0, -1, 99}) {
        click(nothing);
    }
    click(entries[0].id);
    waitFor([&] { return triggered.count() == 2; });
}

}  // namespace
}  // namespace vorn
