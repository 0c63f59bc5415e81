// Shows invented readings in the tray of the desktop it runs on, to look at: tray_gallery [light] [STYLE].
// Reads lines from standard input, each the scenario and the items to show from then on: "limited sessionRing
// weekReset"; without items all of them. Says "activated" and "host 0" or "host 1" when so.
#include <QApplication>
#include <QMenu>
#include <QSettings>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <iostream>
#include <sstream>

#include <unistd.h>

#include "app/model/model_parts.hpp"
#include "app/model/preferences.hpp"
#include "platform/status_item.hpp"
#include "ui/glyph/menu_bar_glyph.hpp"

using namespace vorn;

namespace {

void say(const std::string& what) {
    std::cout << what << std::endl;
}

struct Gallery {
    StatusItem& item;
    MenuBarGlyph::Look look;
    Preferences& preferences;

    void show(const std::string& line) const {
        std::istringstream words(line);
        std::string word;
        words >> word;
        const auto scenario = demo::scenarioNamed(word);
        if (!scenario) {
            return;
        }
        std::vector<MenuBarItem> items;
        while (words >> word) {
            if (const auto named = menuBarItemFrom(word)) {
                items.push_back(*named);
            }
        }
        if (items.empty()) {
            items.assign(kAllMenuBarItems.begin(), kAllMenuBarItems.end());
        }
        UsageModel model(preferences, makeModelParts());
        model.startDemo(demo::makeDemo(*scenario, model.now()));
        StatusContent content{.toolTip = QStringLiteral("Room & <1m>\nSession 42%")};
        for (const MenuBarPart& part : MenuBarGlyph::parts(items, model)) {
            content.images.emplace_back(
                [part, drawn = look](int side) { return MenuBarGlyph::cell(part, drawn, side); });
        }
        item.show(std::move(content));
    }
};

}  // namespace

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    QApplication::setApplicationDisplayName(QStringLiteral("Vorn"));
    QApplication::setQuitOnLastWindowClosed(false);
    const QTemporaryDir directory;
    qputenv("VORN_HOME", directory.path().toLocal8Bit());

    QMenu menu;
    QObject::connect(menu.addAction(QStringLiteral("&Refresh")), &QAction::triggered, [] { say("refresh"); });
    menu.addSeparator();
    QObject::connect(menu.addAction(QStringLiteral("&Quit")), &QAction::triggered, &application, &QApplication::quit);

    MenuBarGlyph::Look look{.palette = MenuBarGlyph::Palette::onDark()};
    for (const QString& argument : QApplication::arguments().mid(1)) {
        if (argument == QStringLiteral("light")) {
            look.palette = MenuBarGlyph::Palette::onLight();
        }
        for (const GlyphStyle style : kAllGlyphStyles) {
            look.style = argument == QLatin1String(rawValue(style)) ? style : look.style;
        }
    }
    const auto item = StatusItem::system(menu);
    QObject::connect(item.get(), &StatusItem::activated, [] { say("activated"); });
    QObject::connect(item.get(), &StatusItem::hostChanged,
                     [&item] { say("host " + std::to_string(static_cast<int>(item->hasHost()))); });

    Preferences preferences(
        std::make_unique<QSettings>(directory.filePath(QStringLiteral("p.ini")), QSettings::IniFormat));
    const Gallery gallery{*item, look, preferences};
    gallery.show("at-risk");
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&, pending = std::string()]() mutable {
        std::array<char, 4096> bytes{};
        const ssize_t length = read(STDIN_FILENO, bytes.data(), bytes.size());
        input.setEnabled(length > 0);
        pending.append(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
        for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1)) {
            gallery.show(pending.substr(0, end));
        }
    });
    return QApplication::exec();
}
