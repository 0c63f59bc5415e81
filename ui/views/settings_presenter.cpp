#include "ui/views/settings_presenter.hpp"

#include <algorithm>
#include <array>
#include <vector>

#include "app/model/integrations.hpp"
#include "app/model/preferences.hpp"
#include "app/model/usage_model.hpp"
#include "platform/hot_key.hpp"
#include "platform/notification_center.hpp"
#include "ui/format/format.hpp"
#include "ui/views/left_to_right.hpp"

namespace vorn {
namespace {

/// The intervals to choose from, in minutes, with the stored one in its place.
std::vector<double> offeredMinutes(double stored) {
    constexpr std::array kUsual{1.0, 2.0, 5.0, 10.0, 15.0, 30.0};
    std::vector<double> minutes(kUsual.begin(), kUsual.end());
    const auto place = std::ranges::lower_bound(minutes, stored);
    if (place == minutes.end() || *place != stored) {
        minutes.insert(place, stored);
    }
    return minutes;
}

}  // namespace

SettingsPresenter::SettingsPresenter(const SettingsWindow::Deps& deps, QObject* parent)
    : QObject(parent), m_deps(deps) {
    observe();
}

void SettingsPresenter::observe() {
    for (const auto signal :
         {&Preferences::refreshMinutesChanged, &Preferences::colorWhenAtRiskChanged, &Preferences::notifyAtRiskChanged,
          &Preferences::notifyLimitedChanged, &Preferences::notifyResetChanged, &Preferences::useLocalActivityChanged,
          &Preferences::glyphStyleChanged, &Preferences::trayCellsChanged, &Preferences::storeProblemChanged}) {
        connect(&m_deps.preferences, signal, this, &SettingsPresenter::changed);
    }
    connect(&m_deps.integrations, &Integrations::changed, this, &SettingsPresenter::changed);
    connect(&m_deps.hotKey, &HotKey::stateChanged, this, &SettingsPresenter::changed);
    if (m_deps.notifications) {
        connect(m_deps.notifications, &NotificationCenter::problemChanged, this, &SettingsPresenter::changed);
    }
}

const QString& SettingsPresenter::storeProblem() const {
    return m_deps.preferences.storeProblem();
}

QStringList SettingsPresenter::intervals() const {
    QStringList texts;
    for (const double minutes : offeredMinutes(m_deps.preferences.refreshMinutes())) {
        texts << leftToRight(QStringLiteral("%1 min").arg(minutes, 0, 'g', 6).toStdString());
    }
    return texts;
}

int SettingsPresenter::interval() const {
    const double stored = m_deps.preferences.refreshMinutes();
    const std::vector<double> offered = offeredMinutes(stored);
    return static_cast<int>(std::ranges::find(offered, stored) - offered.begin());
}

void SettingsPresenter::setInterval(int index) {
    const std::vector<double> offered = offeredMinutes(m_deps.preferences.refreshMinutes());
    if (index >= 0 && index < static_cast<int>(offered.size())) {
        m_deps.preferences.setRefreshMinutes(offered[static_cast<std::size_t>(index)]);
    }
}

bool SettingsPresenter::launchAtLogin() const {
    return m_deps.integrations.launchAtLogin();
}

void SettingsPresenter::setLaunchAtLogin(bool on) {
    m_deps.integrations.setLaunchAtLogin(on);
    // A switch that was refused goes back.
    emit changed();
}

bool SettingsPresenter::canLaunchAtLogin() const {
    return m_deps.integrations.canLaunchAtLogin() && m_deps.integrations.readOnlyReason().isEmpty();
}

QString SettingsPresenter::loginText() const {
    if (!m_deps.integrations.readOnlyReason().isEmpty()) {
        return m_deps.integrations.readOnlyReason();
    }
    return m_deps.integrations.canLaunchAtLogin()
               ? QString()
               : QStringLiteral("This system cannot start Vorn: it is not installed as an application.");
}

const QString& SettingsPresenter::loginProblem() const {
    return m_deps.integrations.loginItemError();
}

bool SettingsPresenter::isSingleRing() const {
    return m_deps.preferences.trayCells() == TrayCells::singleRing;
}

void SettingsPresenter::setSingleRing(bool on) {
    m_deps.preferences.setTrayCells(on ? TrayCells::singleRing : TrayCells::perItem);
}

QString SettingsPresenter::hotKeys() const {
    return m_deps.hotKey.keys();
}

bool SettingsPresenter::isHotKeyRegistered() const {
    return m_deps.hotKey.isRegistered();
}

QString SettingsPresenter::hotKeyProblem() const {
    return m_deps.hotKey.problem();
}

QStringList SettingsPresenter::styleTitles() {
    QStringList titles;
    for (const GlyphStyle style : kAllGlyphStyles) {
        titles << QString::fromUtf8(title(style));
    }
    return titles;
}

QStringList SettingsPresenter::styleDescriptions() {
    QStringList descriptions;
    for (const GlyphStyle style : kAllGlyphStyles) {
        descriptions << QString::fromUtf8(description(style));
    }
    return descriptions;
}

int SettingsPresenter::glyphStyle() const {
    const auto found = std::ranges::find(kAllGlyphStyles, m_deps.preferences.glyphStyle());
    return static_cast<int>(found - kAllGlyphStyles.begin());
}

void SettingsPresenter::setGlyphStyle(int index) {
    if (index >= 0 && index < static_cast<int>(kAllGlyphStyles.size())) {
        m_deps.preferences.setGlyphStyle(kAllGlyphStyles.at(static_cast<std::size_t>(index)));
    }
}

bool SettingsPresenter::colorWhenAtRisk() const {
    return m_deps.preferences.colorWhenAtRisk();
}

void SettingsPresenter::setColorWhenAtRisk(bool on) {
    m_deps.preferences.setColorWhenAtRisk(on);
}

bool SettingsPresenter::notifyAtRisk() const {
    return m_deps.preferences.notifyAtRisk();
}

void SettingsPresenter::setNotifyAtRisk(bool on) {
    m_deps.preferences.setNotifyAtRisk(on);
}

bool SettingsPresenter::notifyLimited() const {
    return m_deps.preferences.notifyLimited();
}

void SettingsPresenter::setNotifyLimited(bool on) {
    m_deps.preferences.setNotifyLimited(on);
}

bool SettingsPresenter::notifyReset() const {
    return m_deps.preferences.notifyReset();
}

void SettingsPresenter::setNotifyReset(bool on) {
    m_deps.preferences.setNotifyReset(on);
}

QString SettingsPresenter::noticeProblem() const {
    return m_deps.notifications ? m_deps.notifications->problem()
                                : QStringLiteral(
                                      "This system shows Vorn's notifications only when it is installed "
                                      "as an application.");
}

void SettingsPresenter::sendTest() {
    if (!noticeProblem().isEmpty()) {
        return;
    }
    const QString now = leftToRight(Format::clock(systemNow(), systemNow()));
    m_deps.notifications->post({.id = QStringLiteral("test"),
                                .title = QStringLiteral("Vorn can reach you"),
                                .body = QStringLiteral("This is how a warning about a limit will look.")});
    m_testText = QStringLiteral("Sent %1. Nothing to see? Check Do Not Disturb.").arg(now);
    emit changed();
}

bool SettingsPresenter::useLocalActivity() const {
    return m_deps.preferences.useLocalActivity();
}

void SettingsPresenter::setUseLocalActivity(bool on) {
    m_deps.preferences.setUseLocalActivity(on);
}

}  // namespace vorn
