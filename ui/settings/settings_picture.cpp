#include "ui/settings/settings_picture.hpp"

#include <QCoreApplication>
#include <QEventLoop>

#include "core/status_line/status_line_connection.hpp"
#include "model/integrations.hpp"
#include "model/usage_model.hpp"
#include "platform/desktop_appearance.hpp"
#include "platform/hot_key.hpp"
#include "platform/login_item.hpp"
#include "platform/notification_center.hpp"
#include "platform/panel_brightness.hpp"
#include "ui/settings/qml_types.hpp"
#include "ui/settings/settings_pages.hpp"
#include "ui/window/view_picture.hpp"

namespace vorn {
namespace {

/// What the system has, never changed.
class PicturedLoginItem : public LoginItem {
public:
    [[nodiscard]] bool isEnabled() const override { return m_system && m_system->isEnabled(); }
    void setEnabled(bool) override {}

private:
    std::unique_ptr<LoginItem> m_system = LoginItem::system();
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
StatusLineIntegration statusLine(bool isDemo) {
    return isDemo ? StatusLineIntegration({}) : StatusLineConnection::current();
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
    registerSettingsTypes();
    const bool isDemo = picture.model.answer().isDemo;
    PicturedLoginItem loginItem;
    Integrations integrations(statusLine(isDemo), isDemo ? nullptr : &loginItem);
    if (isDemo) {
        integrations.setReadOnly(Integrations::demonstration());
    }
    integrations.refresh();
    PicturedNotices notices;
    PicturedHotKey hotKey;
    PanelBrightness panel(picture.appearance);
    ClaudeFinder finder;
    SettingsPages pages({.preferences = picture.preferences,
                         .integrations = integrations,
                         .model = picture.model,
                         .requests = picture.requests,
                         .notifications = &notices,
                         .hotKey = hotKey,
                         .appearance = picture.appearance,
                         .panel = panel},
                        finder);
    while (picture.page == SettingsWindow::Page::claudeCode && finder.finding().isSearching) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return pictureOf(engine, ViewPicture{.view = QUrl("qrc:/qt/qml/Vorn/Settings/SettingsView.qml"),
                                         .properties = pages.properties(picture.page),
                                         .pixelRatio = picture.pixelRatio});
}

}  // namespace vorn
