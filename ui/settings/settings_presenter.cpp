#include "ui/settings/settings_presenter.hpp"

#include <utility>

#include "core/wording/format.hpp"
#include "model/integrations.hpp"
#include "model/preferences/preferences.hpp"
#include "platform/hot_key.hpp"
#include "platform/notification_center.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {

SettingsPresenter::SettingsPresenter(const SettingsWindow::Deps& deps, QObject* parent)
    : QObject(parent), m_deps(deps) {
    observe();
    update();
}

void SettingsPresenter::observe() {
    for (const auto signal :
         {&Preferences::refreshMinutesChanged, &Preferences::colorWhenAtRiskChanged, &Preferences::notifyAtRiskChanged,
          &Preferences::notifyLimitedChanged, &Preferences::notifyResetChanged, &Preferences::useLocalActivityChanged,
          &Preferences::glyphStyleChanged, &Preferences::trayCellsChanged, &Preferences::storeProblemChanged}) {
        connect(&m_deps.preferences, signal, this, &SettingsPresenter::update);
    }
    connect(&m_deps.integrations, &Integrations::changed, this, &SettingsPresenter::update);
    connect(&m_deps.hotKey, &HotKey::stateChanged, this, &SettingsPresenter::update);
    if (m_deps.notifications) {
        connect(m_deps.notifications, &NotificationCenter::problemChanged, this, &SettingsPresenter::update);
    }
}

void SettingsPresenter::update() {
    const SettingsContent content = settingsContent(m_deps);
    if (std::exchange(m_content, content) != content) {
        emit changed();
    }
}

void SettingsPresenter::setInterval(int index) {
    const std::vector<double> offered = offeredMinutes(m_deps.preferences.refreshMinutes());
    if (index >= 0 && index < static_cast<int>(offered.size())) {
        m_deps.preferences.setRefreshMinutes(offered[static_cast<std::size_t>(index)]);
    }
}

void SettingsPresenter::setGlyphStyle(int index) {
    if (index >= 0 && index < static_cast<int>(kAllGlyphStyles.size())) {
        m_deps.preferences.setGlyphStyle(kAllGlyphStyles.at(static_cast<std::size_t>(index)));
    }
}

void SettingsPresenter::setLaunchAtLogin(bool on) {
    m_deps.integrations.setLaunchAtLogin(on);
}

void SettingsPresenter::setSingleRing(bool on) {
    m_deps.preferences.setTrayCells(on ? TrayCells::singleRing : TrayCells::perItem);
}

void SettingsPresenter::setColorWhenAtRisk(bool on) {
    m_deps.preferences.setColorWhenAtRisk(on);
}

void SettingsPresenter::setNotifyAtRisk(bool on) {
    m_deps.preferences.setNotifyAtRisk(on);
}

void SettingsPresenter::setNotifyLimited(bool on) {
    m_deps.preferences.setNotifyLimited(on);
}

void SettingsPresenter::setNotifyReset(bool on) {
    m_deps.preferences.setNotifyReset(on);
}

void SettingsPresenter::setUseLocalActivity(bool on) {
    m_deps.preferences.setUseLocalActivity(on);
}

void SettingsPresenter::sendTest() {
    if (!m_content.noticeProblem.isEmpty()) {
        return;
    }
    const QString now = leftToRight(Format::clock(systemNow(), systemNow()));
    m_deps.notifications->post({.id = QStringLiteral("test"),
                                .title = QStringLiteral("Vorn can reach you"),
                                .body = QStringLiteral("This is how a warning about a limit will look.")});
    m_testText = QStringLiteral("Sent %1. Nothing to see? Check Do Not Disturb.").arg(now);
    emit testTextChanged();
}

}  // namespace vorn
