#pragma once

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "app/command_line.hpp"
#include "model/integrations.hpp"
#include "model/notifier.hpp"
#include "model/preferences/choices_file.hpp"
#include "model/preferences/preferences.hpp"
#include "model/usage_model.hpp"
#include "platform/desktop_appearance.hpp"
#include "platform/hot_key.hpp"
#include "platform/login_item.hpp"
#include "platform/notification_center.hpp"
#include "platform/panel_brightness.hpp"
#include "platform/status_item.hpp"
#include "platform/wake_signal.hpp"
#include "ui/dashboard/dashboard_window.hpp"
#include "ui/popover/popover_window.hpp"
#include "ui/settings/settings_window.hpp"
#include "ui/tray/menu_bar_glyph.hpp"
#include "ui/window/app_requests.hpp"

class QFileDialog;

namespace vorn {

/// Makes the long-lived objects, connects them, and lets the user's clicks and keys reach them. Everything lives until
/// the process ends. Main thread only.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    /// A demonstration changes nothing outside the process.
    explicit AppDelegate(std::optional<demo::Scenario> demo);
    ~AppDelegate() override;

    /// Puts the glyph into the tray and starts to read.
    void finishLaunching();

    void showPopover();
    void openDashboard();
    void openSettings();
    [[nodiscard]] UsageModel& model() { return *m_model; }

private:
    void connectModel();
    void followProject();
    void connectWindows();
    void connectDesktop();
    void fillMenu();
    void observePreferences();
    /// Only the first call counts.
    void startData();
    void togglePopover(const PopoverAnchor& anchor);
    [[nodiscard]] PopoverAnchor anchorOfClick() const;
    void evaluateNotices();
    void updateStatusItem();
    /// A dialog for a file, in the place of one that is still open; deletes itself when closed.
    QFileDialog* newFileDialog(const QString& title);
    void chooseClaude();
    /// Asks for a file to write the table to.
    void chooseExport(AppRequests::Table table, AppRequests::TableFormat format);
    void exportTable(const QString& file, AppRequests::Table table, AppRequests::TableFormat format);
    /// Says once that nothing is to be seen of Vorn on this desktop, and what to do.
    void tellMissingHost();

    /// What the tray shows; a new image is made only when this changes.
    struct Shown {
        std::vector<MenuBarPart> parts;
        MenuBarGlyph::Look look;
        QString toolTip;
        bool operator==(const Shown&) const = default;
    };
    [[nodiscard]] Shown wantedStatus() const;

    const std::optional<demo::Scenario> m_demo;
    QTimer m_ticker;  ///< The one timer of an idle Vorn, for whatever is looked at regularly.
    Preferences m_preferences;
    std::unique_ptr<ChoicesFile> m_choices;
    std::unique_ptr<UsageModel> m_model;
    std::unique_ptr<LoginItem> m_loginItem;
    Integrations m_integrations;
    std::unique_ptr<NotificationCenter> m_notificationCenter;
    Notifier m_notifier;
    std::unique_ptr<WakeSignal> m_wakeSignal;
    std::unique_ptr<DesktopAppearance> m_appearance;
    std::unique_ptr<PanelBrightness> m_panelBrightness;
    QMenu m_menu;
    std::unique_ptr<StatusItem> m_statusItem;
    std::optional<Shown> m_shown;
    std::unique_ptr<HotKey> m_hotKey;
    ViewEngine m_viewEngine;
    AppRequests m_requests;
    PopoverWindow m_popover;
    DashboardWindow m_dashboard;
    SettingsWindow m_settings;
    QPointer<QFileDialog> m_fileDialog;
    bool m_isStarted = false;
};

}  // namespace vorn
