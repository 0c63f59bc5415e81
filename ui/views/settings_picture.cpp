#include "ui/views/settings_picture.hpp"

#include <QCoreApplication>
#include <QEventLoop>

#include "app/model/integrations.hpp"
#include "app/model/usage_model.hpp"
#include "core/sources/status_line_connection.hpp"
#include "platform/desktop_appearance.hpp"
#include "platform/hot_key.hpp"
#include "platform/login_item.hpp"
#include "platform/notification_center.hpp"
#include "platform/panel_brightness.hpp"
#include "ui/views/settings_pages.hpp"
#include "ui/views/view_picture.hpp"

namespace vorn {
namespace {

class PicturedLoginItem : public LoginItem {
public:
    [[nodiscard]] bool isEnabled() const override { return true; }
    void setEnabled(bool) override {}
};

class PicturedHotKey : public HotKey {
public:
    [[nodiscard]] bool isRegistered() const override { return true; }
    [[nodiscard]] QString problem() const override { return {}; }
    [[nodiscard]] QString keys() const override { return QStringLiteral("Ctrl+Alt+P"); }
};

class PicturedNotices : public NotificationCenter {
public:
    void requestAuthorization(std::function<void(bool)>) override {}
    void post(const Notice&) override {}
    [[nodiscard]] QString problem() const override { return {}; }
};

/// A demonstration's is connected to nothing that exists.
StatusLineIntegration statusLine(const UsageModel& model) {
    return model.isDemo() ? StatusLineIntegration({}) : StatusLineConnection::current();
}

}  // namespace

const char* pictureName(SettingsWindow::Page page) {
    switch (page) {
        case SettingsWindow::Page::general:
            return "settings-general";
        case SettingsWindow::Page::menuBar:
            return "settings-menu-bar";
        case SettingsWindow::Page::notifications:
            return "settings-notifications";
        case SettingsWindow::Page::claudeCode:
            break;
    }
    return "settings-claude-code";
}

QImage pictureOf(QQmlEngine& engine, const SettingsPicture& picture) {
    PicturedLoginItem loginItem;
    Integrations integrations(statusLine(picture.model), picture.model.isDemo() ? nullptr : &loginItem);
    if (picture.model.isDemo()) {
        integrations.setReadOnly(Integrations::demonstration());
    }
    integrations.refresh();
    PicturedNotices notices;
    PicturedHotKey hotKey;
    PanelBrightness panel(picture.appearance);
    ClaudeFinder finder;
    SettingsPages pages({.preferences = picture.model.preferences(),
                         .integrations = integrations,
                         .model = picture.model,
                         .notifications = &notices,
                         .hotKey = hotKey,
                         .appearance = picture.appearance,
                         .panel = panel},
                        finder);
    while (picture.page == SettingsWindow::Page::claudeCode && finder.finding().isSearching) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return pictureOf(engine, ViewPicture{.view = QUrl("qrc:/qt/qml/Vorn/SettingsView.qml"),
                                         .properties = pages.properties(picture.page),
                                         .pixelRatio = picture.pixelRatio});
}

}  // namespace vorn
