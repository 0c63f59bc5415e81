#include "ui/settings/settings_content.hpp"

#include <algorithm>
#include <array>

#include "model/integrations.hpp"
#include "model/preferences/preferences.hpp"
#include "platform/hot_key.hpp"
#include "platform/notification_center.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

/// Whoever asks every minute is refused for hours; this is what nobody was refused for.
constexpr double kGentle = 3;  // minutes

void showPreferences(const Preferences& preferences, SettingsContent& content) {
    const double stored = preferences.refreshMinutes();
    const std::vector<double> offered = offeredMinutes(stored);
    for (const double minutes : offered) {
        content.intervals << leftToRight(QStringLiteral("%1 min").arg(minutes, 0, 'g', 6).toStdString());
    }
    content.isOften = stored < kGentle;
    content.interval = static_cast<int>(std::ranges::find(offered, stored) - offered.begin());
    for (const GlyphStyle style : kAllGlyphStyles) {
        content.styleTitles << QString::fromUtf8(title(style));
        content.styleDescriptions << QString::fromUtf8(description(style));
    }
    const auto style = std::ranges::find(kAllGlyphStyles, preferences.glyphStyle());
    content.glyphStyle = static_cast<int>(style - kAllGlyphStyles.begin());
    content.storeProblem = preferences.storeProblem();
    content.isSingleRing = preferences.trayCells() == TrayCells::singleRing;
    content.colorWhenAtRisk = preferences.colorWhenAtRisk();
    content.notifyAtRisk = preferences.notifyAtRisk();
    content.notifyLimited = preferences.notifyLimited();
    content.notifyReset = preferences.notifyReset();
    content.useLocalActivity = preferences.useLocalActivity();
}

void showLoginItem(const Integrations& integrations, SettingsContent& content) {
    const QString& readOnly = integrations.readOnlyReason();
    content.launchAtLogin = integrations.launchAtLogin();
    content.canLaunchAtLogin = integrations.canLaunchAtLogin() && readOnly.isEmpty();
    content.loginProblem = integrations.loginItemError();
    if (!readOnly.isEmpty()) {
        content.loginText = readOnly;
    } else if (!integrations.canLaunchAtLogin()) {
        content.loginText = QStringLiteral("This system cannot start Vorn: it is not installed as an application.");
    }
}

}  // namespace

std::vector<double> offeredMinutes(double stored) {
    constexpr std::array kUsual{1.0, 2.0, 5.0, 10.0, 15.0, 30.0};
    std::vector<double> minutes(kUsual.begin(), kUsual.end());
    const auto place = std::ranges::lower_bound(minutes, stored);
    if (place == minutes.end() || *place != stored) {
        minutes.insert(place, stored);
    }
    return minutes;
}

SettingsContent settingsContent(const SettingsWindow::Deps& deps) {
    SettingsContent content;
    showPreferences(deps.preferences, content);
    showLoginItem(deps.integrations, content);
    content.hasCells = deps.hasCells;
    content.hotKeys = deps.hotKey.keys();
    content.isHotKeyRegistered = deps.hotKey.isRegistered();
    content.hotKeyProblem = deps.hotKey.problem();
    content.noticeProblem =
        deps.notifications
            ? deps.notifications->problem()
            : QStringLiteral("This system shows Vorn's notifications only when it is installed as an application.");
    return content;
}

}  // namespace vorn
