#include "app/app_delegate.hpp"

#include <QCoreApplication>
#include <QCursor>
#include <QFileDialog>
#include <QMessageBox>
#include <QSettings>
#include <QStringList>
#include <chrono>
#include <cstdio>
#include <utility>

#include "core/data/vorn_paths.hpp"
#include "core/status_line/status_line_connection.hpp"
#include "core/support/file.hpp"
#include "core/transcripts/export_text.hpp"
#include "core/wording/answer_text.hpp"
#include "model/model_parts.hpp"
#include "platform/memory.hpp"
#include "ui/tray/tray_look.hpp"

namespace vorn {
namespace {

/// How long reading waits for the icon to be in the tray.
constexpr std::chrono::milliseconds kTrayPatience{100};
/// How long a panel may take to come up after login before somebody is told that there is none.
constexpr std::chrono::seconds kHostPatience{20};
/// By then everything was read and drawn once, with memory and library code that is not needed again.
constexpr std::chrono::seconds kSettled{60};

WindowPlaceStore placeOf(Preferences& preferences, const QString& name) {
    return {.load = [&preferences, name]() -> WindowPlace {
                return {.rect = preferences.windowPlace(name), .isMaximized = preferences.isWindowMaximized(name)};
            },
            .save =
                [&preferences, name](const WindowPlace& place) {
                    preferences.setWindowPlace(name, place.rect, place.isMaximized);
                }};
}

/// Without waiting for the answer.
void tell(const QString& text) {
    auto* box = new QMessageBox(QMessageBox::Information, "Vorn", text, QMessageBox::Ok);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

QString toolTip(const Answer& answer) {
    QStringList lines;
    for (const std::string& line : Format::tooltipLines(answer)) {
        lines << QString::fromStdString(line);
    }
    return lines.join('\n');
}

/// The items that get a cell or a place in the strip.
std::vector<MenuBarItem> shownItems(const Preferences& preferences) {
    const bool hasSingle = StatusItem::hasCells() && preferences.trayCells() == TrayCells::singleRing;
    return hasSingle ? singleRing(preferences.menuBarItems()) : preferences.menuBarItems();
}

}  // namespace

AppDelegate::AppDelegate(std::optional<demo::Scenario> demo)
    : m_demo(demo),
      m_preferences(Preferences::standardStore()),
      m_model(std::make_unique<UsageModel>(m_preferences, makeModelParts(m_ticker))),
      m_loginItem(demo ? nullptr : LoginItem::system()),
      m_integrations(StatusLineConnection::current(), m_loginItem.get()),
      m_notificationCenter(NotificationCenter::system()),
      m_notifier(m_notificationCenter.get()),
      m_wakeSignal(WakeSignal::system()),
      m_appearance(DesktopAppearance::system()),
      m_panelBrightness(PanelBrightness::system(*m_appearance)),
      m_statusItem(StatusItem::system(m_menu)),
      m_hotKey(HotKey::system()),
      m_viewEngine(*m_appearance),
      m_popover(*m_model, m_requests, m_viewEngine),
      m_dashboard(*m_model, m_requests, m_viewEngine, placeOf(m_preferences, "dashboard")),
      m_settings({.preferences = m_preferences,
                  .integrations = m_integrations,
                  .model = *m_model,
                  .requests = m_requests,
                  .notifications = m_notificationCenter.get(),
                  .hotKey = *m_hotKey,
                  .appearance = *m_appearance,
                  .panel = *m_panelBrightness,
                  .hasCells = StatusItem::hasCells(),
                  .place = placeOf(m_preferences, "settings")},
                 m_viewEngine) {
    if (demo) {
        m_preferences.detachFromStore();
        m_integrations.setReadOnly(Integrations::demonstration());
    }
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::finishLaunching() {
    fillMenu();
    connectModel();
    connectWindows();
    connectDesktop();
    updateStatusItem();
    m_notifier.requestAuthorization([this] { evaluateNotices(); });
    observePreferences();
    // The icon's way over the bus takes several turns of the event loop. Reading would come between.
    connect(m_statusItem.get(), &StatusItem::hostChanged, this, &AppDelegate::startData);
    QTimer::singleShot(kTrayPatience, this, &AppDelegate::startData);
    m_integrations.refresh();
    if (!m_demo) {
        m_choices = std::make_unique<ChoicesFile>(m_preferences, VornPaths::sharedChoices());
    }
    QTimer::singleShot(kHostPatience, this, &AppDelegate::tellMissingHost);
    QTimer::singleShot(kSettled, this, [] { releaseUnusedMemory(); });
}

void AppDelegate::fillMenu() {
    m_menu.addAction(tr("Show usage"), this, [this] { togglePopover(anchorOfClick()); });
    m_menu.addAction(tr("Dashboard"), this, &AppDelegate::openDashboard);
    m_menu.addAction(tr("Refresh"), m_model.get(), &UsageModel::probe);
    m_menu.addSeparator();
    m_menu.addAction(tr("Settings"), this, &AppDelegate::openSettings);
    m_menu.addAction(tr("Quit Vorn"), qApp, &QCoreApplication::quit);
}

void AppDelegate::connectModel() {
    connect(m_model.get(), &UsageModel::changed, this, [this] {
        updateStatusItem();
        evaluateNotices();
        followProject();
    });
}

void AppDelegate::followProject() {
    const Answer& answer = m_model->answer();
    if (answer.isDemo || !answer.activity) {
        return;
    }
    if (const auto& events = answer.activity->events(); !events.empty()) {
        m_integrations.followProject(events.back().cwd.str());
    }
}

void AppDelegate::connectWindows() {
    connect(&m_popover, &PopoverWindow::opened, this, [this] {
        m_model->refreshForViewer();
        m_integrations.refresh();
    });
    connect(&m_dashboard, &ViewWindow::closed, this, [this] { m_model->setBreakdownShown(false); });
    connect(&m_requests, &AppRequests::refresh, m_model.get(), &UsageModel::probe);
    connect(&m_requests, &AppRequests::openDashboard, this, &AppDelegate::openDashboard);
    connect(&m_requests, &AppRequests::openSettings, this, &AppDelegate::openSettings);
    connect(&m_requests, &AppRequests::chooseClaude, this, &AppDelegate::chooseClaude);
    connect(&m_requests, &AppRequests::exportTable, this, &AppDelegate::chooseExport);
    connect(&m_requests, &AppRequests::quit, qApp, &QCoreApplication::quit);
}

void AppDelegate::connectDesktop() {
    connect(m_statusItem.get(), &StatusItem::activated, this, [this] { togglePopover(anchorOfClick()); });
    connect(m_statusItem.get(), &StatusItem::hostChanged, this, &AppDelegate::updateStatusItem);
    connect(m_hotKey.get(), &HotKey::pressed, this, [this] { togglePopover(PopoverAnchor::inCorner(QCursor::pos())); });
    connect(m_wakeSignal.get(), &WakeSignal::woke, m_model.get(), &UsageModel::refreshForViewer);
    connect(m_panelBrightness.get(), &PanelBrightness::changed, this, &AppDelegate::updateStatusItem);
    connect(&m_ticker, &QTimer::timeout, m_statusItem.get(), &StatusItem::tick);
    connect(&m_ticker, &QTimer::timeout, m_hotKey.get(), &HotKey::tick);
    m_ticker.start(std::chrono::ceil<std::chrono::milliseconds>(UsageModel::tickInterval));  // also in a demonstration
    if (m_notificationCenter) {
        connect(m_notificationCenter.get(), &NotificationCenter::activated, this, &AppDelegate::showPopover);
    }
}

void AppDelegate::observePreferences() {
    for (const auto changed :
         {&Preferences::colorWhenAtRiskChanged, &Preferences::glyphStyleChanged, &Preferences::menuBarLayoutChanged,
          &Preferences::trayCellsChanged, &Preferences::useLocalActivityChanged, &Preferences::notifyAtRiskChanged,
          &Preferences::notifyLimitedChanged, &Preferences::notifyResetChanged}) {
        connect(&m_preferences, changed, m_model.get(), &UsageModel::recompute);
    }
    connect(&m_preferences, &Preferences::claudePathOverrideChanged, m_model.get(), &UsageModel::probeAnew);
}

void AppDelegate::startData() {
    if (std::exchange(m_isStarted, true)) {
        return;
    }
    if (m_demo) {
        m_model->startDemo(demo::makeDemo(*m_demo, systemNow()));
    } else {
        m_model->start();
    }
}

void AppDelegate::showPopover() {
    m_popover.open(PopoverAnchor::inCorner(QCursor::pos()));
}

void AppDelegate::openDashboard() {
    m_popover.close();
    m_model->setBreakdownShown(true);
    m_model->refreshForViewer();
    m_dashboard.open();
}

void AppDelegate::openSettings() {
    m_popover.close();
    m_settings.open();
}

void AppDelegate::togglePopover(const PopoverAnchor& anchor) {
    m_popover.toggle(anchor);
}

PopoverAnchor AppDelegate::anchorOfClick() const {
    if (const auto cell = m_statusItem->geometry()) {
        return {PopoverAnchor::Kind::trayCell, *cell};
    }
    return PopoverAnchor::atCursor(QCursor::pos());
}

void AppDelegate::evaluateNotices() {
    m_notifier.evaluate(m_model->answer(), m_preferences);
}

AppDelegate::Shown AppDelegate::wantedStatus() const {
    return {.parts = MenuBarGlyph::parts(shownItems(m_preferences), m_model->answer()),
            .look = trayLook(m_preferences, *m_appearance, *m_panelBrightness),
            .toolTip = toolTip(m_model->answer())};
}

void AppDelegate::updateStatusItem() {
    Shown wanted = wantedStatus();
    if (m_shown == wanted) {
        return;
    }
    StatusContent content{.toolTip = wanted.toolTip};
    if (StatusItem::hasCells()) {
        for (const MenuBarPart& part : wanted.parts) {
            content.images.emplace_back(
                [part, look = wanted.look](int side) { return MenuBarGlyph::cell(part, look, side); });
        }
    } else {
        content.isTemplate = MenuBarGlyph::isTemplate(wanted.parts, wanted.look);
        content.images.emplace_back([parts = wanted.parts, look = wanted.look](int height) {
            return MenuBarGlyph::image(parts, look, height);
        });
    }
    m_statusItem->show(std::move(content));
    m_shown = std::move(wanted);
}

QFileDialog* AppDelegate::newFileDialog(const QString& title) {
    if (m_fileDialog) {
        m_fileDialog->close();
    }
    m_fileDialog = new QFileDialog(nullptr, title);
    m_fileDialog->setAttribute(Qt::WA_DeleteOnClose);
    return m_fileDialog;
}

void AppDelegate::chooseClaude() {
    QFileDialog* const dialog = newFileDialog(tr("Choose the claude executable"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString& file) { m_preferences.setClaudePathOverride(file); });
    dialog->open();
}

void AppDelegate::chooseExport(AppRequests::Table table, AppRequests::TableFormat format) {
    if (m_demo) {
        tell(tr("This is a demonstration with invented figures: nothing is written."));
        return;
    }
    const QString suffix = format == AppRequests::Json ? "json" : "csv";
    QFileDialog* const dialog = newFileDialog(tr("Export as a table"));
    dialog->setNameFilter("*." + suffix);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffix);
    dialog->selectFile((table == AppRequests::History ? "vorn-history." : "vorn-activity.") + suffix);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, table, format](const QString& file) { exportTable(file, table, format); });
    dialog->open();
}

void AppDelegate::exportTable(const QString& file, AppRequests::Table wanted, AppRequests::TableFormat format) {
    const ExportFormat form = format == AppRequests::Json ? ExportFormat::json : ExportFormat::csv;
    const std::string table = wanted == AppRequests::History ? exportHistory(m_model->history(), form)
                                                             : exportActivity(m_model->activity().events(), form);
    try {
        replaceFile(file.toStdString(), table);
    } catch (const std::filesystem::filesystem_error& error) {
        tell(tr("The table could not be written to %1: %2.").arg(file, QString::fromStdString(error.code().message())));
    }
}

void AppDelegate::tellMissingHost() {
    if (m_statusItem->hasHost()) {
        return;
    }
    const QString open =
        m_hotKey->isRegistered() ? tr("Press %1").arg(m_hotKey->keys()) : tr("Run \"vorn --show-popover\"");
    const QString text = tr("Vorn is running, but this desktop shows no tray. %1 to see your usage. "
                            "On GNOME the AppIndicator extension adds a tray.")
                             .arg(open);
    if (m_notifier.isAuthorized()) {
        m_notificationCenter->post({.id = "no-tray", .title = tr("Vorn has no tray to sit in"), .body = text});
    }
    std::fprintf(stderr, "vorn: %s\n", qPrintable(text));
}

}  // namespace vorn
